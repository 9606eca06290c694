#include "run/logger_file.h"

#include "base/utf8.h"
#include "files/format.h"
#include "files/text.h"

namespace Quillon {

bool LoggerFile::Open(String& error, const String& file_name, bool overwrite) {
    ErrorRecord open_error;
    open_ = file_.Open(open_error, file_name, Encoding::Ansi, !overwrite);
    if (!open_) error = open_error.text;
    return open_;
}

bool LoggerFile::Write(String& error, StringView message, int) {
    if (!open_) return false;
    const platform::LocalTime now = clock_.Now();
    const String prefix = Format(u"%04d-%02d-%02d %02d:%02d:%02d > ", now.year, now.month, now.day,
                                 now.hour, now.minute, now.second);
    return WriteText(error, prefix) && WriteText(error, String(message) + u"\r\n") &&
           WriteText(error, u"\r\n");
}

bool LoggerFile::WriteText(String& error, StringView text) {
    ErrorRecord write_error;
    // Without a mark each byte is a character of its own, so UTF-8 passes through.
    const bool unmarked = file_.CurrentEncoding() == Encoding::Ansi;
    if (file_.Write(write_error, unmarked ? text::Widen(ToUtf8(text)) : String(text))) return true;
    error = write_error.text;
    return false;
}

bool LoggerFile::Close() {
    const bool was_open = open_;
    open_ = false;
    return was_open && file_.Close();
}

}  // namespace Quillon
