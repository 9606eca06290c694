#include "files/reject_file.h"

#include "files/format.h"
#include "files/text.h"

namespace {

void AppendField(String& line, StringView value) {
    String doubled(value);
    text::ReplaceAll(doubled, u"\"", u"\"\"");
    line.append(u",\"").append(doubled).append(u"\"");
}

}  // namespace

void RejectFile::Use(const String& name, std::uint64_t most) {
    name_ = name;
    most_ = most;
    count_ = 0;
}

bool RejectFile::Begin(String& error) {
    ErrorRecord reason;
    const TextForm form{.encoding = {Encoding::Utf8}, .marked = false};
    if (writer_.Open(reason, name_, form, false) &&
        writer_.Write(reason, u"line,reason,record\r\n")) {
        return true;
    }
    error = reason.text;
    return false;
}

bool RejectFile::Add(String& error, std::uint64_t line, StringView reason, StringView record) {
    if (count_ == most_) {
        error = Format(u"More than %u rows were rejected; the last one: %s", most_, reason);
        return false;
    }
    if (count_ == 0 && !Begin(error)) return false;
    ++count_;
    line_ = Format(u"%I64u", line);
    AppendField(line_, reason);
    AppendField(line_, record);
    line_ += u"\r\n";
    ErrorRecord write_error;
    if (writer_.Write(write_error, line_)) return true;
    error = write_error.text;
    return false;
}

bool RejectFile::Close(String& error) {
    ErrorRecord reason;
    if (writer_.Finish(reason)) return true;
    error = reason.text;
    return false;
}
