#include "consumers/file_target.h"

#include <algorithm>

#include "files/format.h"
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
    {.name = u"Bom",
     .kind = KeyKind::Flag,
     .edition1 = u"1",
     .edition2 = u"0",
     .meaning = u"a new file begins with its byte-order mark; standard output only when set",
     .since = Since::Later,
     .defaults = kMarkDefaults},
    {.name = u"Unmappable",
     .kind = KeyKind::Word,
     .words = kUnmappableWords,
     .edition1 = u"Cut",
     .edition2 = u"Stop",
     .meaning = u"what becomes of a character that the encoding lacks",
     .since = Since::Later},
    {.name = u"OnFailure",
     .kind = KeyKind::Word,
     .words = u"Keep Restore",
     .edition1 = u"Keep",
     .edition2 = u"Restore",
     .meaning = u"what stands under the name when the step fails: what was written, or what was "
                u"there before",
     .since = Since::Later},
    {.name = u"WriteBuffer",
     .kind = KeyKind::Size,
     .edition1 = u"0",
     .edition2 = u"1M",
     .meaning = u"how much is gathered before a write; 0 writes each row",
     .since = Since::Later},
});
constexpr Key kName = kKeys[u"Name"];
constexpr Key kOneFilePerResultSet = kKeys[u"OneFilePerResultSet"];
constexpr Key kBom = kKeys[u"Bom"];
constexpr Key kUnmappable = kKeys[u"Unmappable"];
constexpr Key kOnFailure = kKeys[u"OnFailure"];
constexpr Key kWriteBuffer = kKeys[u"WriteBuffer"];

bool IsConsoleWord(StringView name) {
    return text::EqualsIgnoringCase(name, u"STDOUT") || text::EqualsIgnoringCase(name, u"CONSOLE");
}

}  // namespace

KeySpan FileTarget::FileKeys() { return kKeys; }

bool FileTarget::ReadSettings(String& /*error*/, const SectionSettings& /*settings*/) {
    return true;
}
bool FileTarget::BeginFile(String& /*error*/) { return true; }
bool FileTarget::ContinueFile(String& /*error*/) { return false; }
bool FileTarget::LeaveFile(String& /*error*/) { return true; }

bool FileTarget::Open(String& error, const SectionSettings& settings) {
    written_size_ = 0;
    replaced_ = 0;
    written_files_.clear();
    columns_are_new_ = true;
    write_failed_ = false;
    untold_failure_.clear();
    one_file_per_result_set_ = settings.Flag(kOneFilePerResultSet);
    ReadPolicies(settings);
    if (format_.needs_name && settings.Text(kName).empty()) {
        error = u"File name is not provided.";
        return false;
    }
    return EncodingIsKnown(error) && ReadSettings(error, settings) && OpenNamed(error, settings);
}

// What replaces a file has arrived or fails the step, whatever else is only told of.
void FileTarget::ReadPolicies(const SectionSettings& settings) {
    append_ = !settings.Flag(format_.overwrite);
    form_ = TextFormOf(settings);
    marks_console_ = settings.IsSet(kBom) && form_.marked;
    any_console_word_ = settings.Follows(Rule::ConsoleIsForAll);
    const OnFailure on_failure = settings.Word(kOnFailure, OnFailure::Keep);
    files_.Start({on_failure, append_, settings.Follows(Rule::FilesMadeOnce)});
    const bool by_error =
        settings.Follows(Rule::FilesMustClose) || on_failure == OnFailure::Restore;
    sink_policy_ = {by_error ? LossTold::ByError : LossTold::ByNotice,
                    static_cast<std::size_t>(settings.Size(kWriteBuffer))};
}

TextForm FileTarget::TextFormOf(const SectionSettings& settings) const {
    return ReadTextForm(settings,
                        {.encoding = format_.encoding, .mark = kBom, .unmappable = kUnmappable});
}

bool FileTarget::SetsMark(const SectionSettings& settings) { return settings.IsSet(kBom); }

// Found out before any file is touched.
bool FileTarget::EncodingIsKnown(String& error) const {
    ErrorRecord reason;
    const bool known = KnowsEncoding(reason, form_.encoding);
    if (!known) error = reason.text;
    return known;
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
    if (CloseSink(error) && ended && !write_failed_) return true;
    if (error.empty()) error = std::exchange(untold_failure_, {});
    return false;
}

// A failure that the caller keeps to itself is told by the next operation.
bool FileTarget::WriteOut(String& error) {
    if (!sink_ || write_failed_ || sink_->Flush(error)) return true;
    NoteLoss();
    untold_failure_ = error;
    return false;
}

bool FileTarget::OpenNamed(String& error, const SectionSettings& settings) {
    const String name = settings.Text(kName);
    sink_.reset();  // it may be the same file
    // A file that has the name of standard output is not what goes on.
    goes_on_ = append_ && platform::PathExists(name) && !(any_console_word_ && IsConsole(name));
    if (IsConsole(name)) {
        TextForm form = form_;
        form.marked = std::exchange(marks_console_, false);  // once, whatever begins behind it
        sink_ = OpenConsoleSink(error, form, !any_console_word_, sink_policy_);
        written_files_.push_back({name});
        return sink_ != nullptr && BeginFile(error);
    }
    // What is replaced at the end can be read till then.
    if (!files_.Replaces(name) && RefuseInput(error, name)) return false;
    auto file = files_.Open(error, name, goes_on_);
    if (!file) return false;
    if (form_.keeps_encoding) form_.line_end = LineEnd();
    sink_ = OpenFileSink(error, name, std::move(file), form_, goes_on_, sink_policy_);
    if (sink_ == nullptr) return false;
    if (!CanGoOn() && !sink_->BeganEmpty()) {
        sink_.reset();
        error =
            Format(u"The file '%s' holds something, and a document cannot be appended to.", name);
        return false;
    }
    written_files_.push_back({name});
    if (form_.keeps_encoding) goes_on_ = !sink_->BeganEmpty();
    return BeginFile(error);
}

bool FileTarget::IsConsole(StringView name) const {
    if (any_console_word_) return IsConsoleWord(name);
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
    const bool is_read = file && file->Size().value_or(0) <= input_read_bytes_;
    if (!append_ && is_read) return false;
    error = Format(u"The target '%s' is the file that the source reads.", name);
    return true;
}

bool FileTarget::OwnsStandardOutput(const SectionSettings& settings, String other_name) {
    settings.ResolveAllMacros(other_name);
    return IsConsoleWord(other_name.empty() ? settings.Text(kName) : other_name);
}

// What comes after what did not arrive must not be written.
void FileTarget::NoteLoss() {
    write_failed_ = true;
    for (auto* const count : {&written_size_, &written_files_.back().bytes}) {
        *count -= std::min(*count, sink_->Lost());
    }
}

bool FileTarget::CloseSink(String& error) {
    if (!sink_) return true;
    replaced_ += sink_->Replaced();
    const bool closed = sink_->Close(error);
    if (!closed && !write_failed_) NoteLoss();
    sink_.reset();
    if (closed && files_.EndFile(error)) return true;
    write_failed_ = true;
    return false;
}

std::uint64_t FileTarget::ReplacedCharacters() const {
    return replaced_ + (sink_ ? sink_->Replaced() : 0);
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
    // A write that fails may have no text, nor may an earlier one stand for it.
    error = std::exchange(untold_failure_, {});
    if (write_failed_) return false;
    if (!sink_) {
        error = u"File is not opened yet.";
        return false;
    }
    const bool taken = sink_->Write(error, text, bytes);
    written_files_.back().bytes += bytes;
    if (taken) return true;
    NoteLoss();
    return false;
}

}  // namespace DataConsumers
