#include "consumers/file_target.h"

#include "files/format.h"
#include "files/line_reader.h"
#include "files/text.h"
#include "platform/file_system.h"

namespace DataConsumers {
namespace {

constexpr KeyTable kKeys({
    {.name = u"Name",
     .meaning = u"the file",
     .macros = Macros::Replaced,
     .names = Names::File,
     .needed = u"name"},
    {.name = u"OneFilePerResultSet",
     .kind = KeyKind::Flag,
     .edition1 = u"0",
     .edition2 = u"0",
     .meaning = u"a file for each result set; macros in the name are replaced anew"},
});
constexpr Key kName = kKeys[u"Name"];
constexpr Key kOneFilePerResultSet = kKeys[u"OneFilePerResultSet"];

}  // namespace

KeySpan FileTarget::FileKeys() { return kKeys; }

bool FileTarget::ReadSettings(String& /*error*/, const SectionSettings& /*settings*/) {
    return true;
}
FileStart FileTarget::StartOf(const SectionSettings& settings) const {
    return {.encoding = ReadEncoding(settings, format_.encoding)};
}
bool FileTarget::BeginFile(String& /*error*/) { return true; }
bool FileTarget::ContinueFile(String& /*error*/) { return false; }
bool FileTarget::LeaveFile(String& /*error*/) { return true; }

bool FileTarget::Open(String& error, const SectionSettings& settings) {
    written_size_ = 0;
    columns_are_new_ = true;
    write_failed_ = false;
    one_file_per_result_set_ = settings.Flag(kOneFilePerResultSet);
    append_ = !settings.Flag(format_.overwrite);
    any_console_word_ = settings.Follows(Rule::ConsoleIsForAll);
    loss_told_ = settings.Follows(Rule::FilesMustClose) ? LossTold::ByError : LossTold::ByNotice;
    if (format_.needs_name && settings.Text(kName).empty()) {
        error = u"File name is not provided.";
        return false;
    }
    return ReadSettings(error, settings) && OpenNamed(error, settings);
}

bool FileTarget::NextResultSet(String& error, const SectionSettings& settings) {
    columns_are_new_ = true;
    if (write_failed_) return false;
    if (!one_file_per_result_set_) return ContinueFile(error);
    const bool left = LeaveFile(error) && (!format_.ends_each_file || EndFile(error));
    return CloseSink(error) && left && OpenNamed(error, settings);
}

bool FileTarget::Close(String& error) {
    const bool ended = EndFile(error);
    return CloseSink(error) && ended && !write_failed_;
}

bool FileTarget::OpenNamed(String& error, const SectionSettings& settings) {
    const String name = settings.Text(kName);
    const FileStart start = StartOf(settings);
    encoding_ = start.encoding;
    sink_.reset();  // it may be the same file
    goes_on_ = append_ && platform::PathExists(name);
    if (IsConsole(name)) {
        sink_ = OpenConsoleSink(encoding_, !any_console_word_);
        return BeginFile(error);
    }
    if (RefuseInput(error, name)) return false;
    sink_ = OpenFileSink(error, name, encoding_, start.marked, append_, loss_told_);
    if (!sink_) return false;
    if (!CanGoOn() && !sink_->BeganEmpty()) {
        error =
            Format(u"The file '%s' holds something, and a document cannot be appended to.", name);
        return false;
    }
    return BeginFile(error);
}

bool FileTarget::IsConsole(StringView name) const {
    if (any_console_word_) {
        return text::EqualsIgnoringCase(name, u"STDOUT") ||
               text::EqualsIgnoringCase(name, u"CONSOLE");
    }
    return format_.takes_console && (name == u"STDOUT" || name == u"CONSOLE");
}

// A file that fits the read buffer has been read whole by now and may be replaced. One that is
// appended to would be read on for ever, or not be read to its new end.
bool FileTarget::RefuseInput(String& error, const String& name) const {
    if (input_file_.empty()) return false;
    const auto input = platform::IdentityOf(input_file_);
    if (!input || platform::IdentityOf(name) != input) return false;
    ErrorRecord ignored;
    const auto file = platform::InputFile::Open(ignored, name);
    const bool is_read = file && file->Size().value_or(0) <= LineReader::kBufferBytes;
    if (!append_ && is_read) return false;
    error = Format(u"The target '%s' is the file that the source reads.", name);
    return true;
}

bool FileTarget::CloseSink(String& error) {
    if (!sink_) return true;
    const bool closed = sink_->Close(error);
    sink_.reset();
    return closed;
}

bool FileTarget::WriteText(String& error, StringView text) {
    std::size_t bytes = 0;
    const bool written = Put(error, text, bytes);
    written_size_ += bytes;
    return written;
}

bool FileTarget::WriteUncounted(String& error, StringView text) {
    std::size_t bytes = 0;
    return Put(error, text, bytes);
}

// bytes: how many reached the file.
bool FileTarget::Put(String& error, StringView text, std::size_t& bytes) {
    error.clear();  // a write that fails may have no text, nor may an earlier one stand for it
    if (write_failed_) return false;
    if (!sink_) {
        error = u"File is not opened yet.";
        return false;
    }
    write_failed_ = !sink_->Write(error, text, bytes);
    return !write_failed_;
}

}  // namespace DataConsumers
