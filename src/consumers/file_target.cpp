#include "consumers/file_target.h"

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

bool ReadName(String& error, const SectionSettings& settings, String& name) {
    name = settings.Text(kName);
    if (!name.empty()) return true;
    error = u"File name is not provided.";
    return false;
}

}  // namespace

KeySpan FileTarget::FileKeys() { return kKeys; }

bool FileTarget::ReadSettings(String& /*error*/, const SectionSettings& /*settings*/) {
    return true;
}
bool FileTarget::BeginFile(String& /*error*/) { return true; }
bool FileTarget::ContinueFile(String& /*error*/) { return false; }
bool FileTarget::LeaveFile(String& error) { return Close(error); }

bool FileTarget::Open(String& error, const SectionSettings& settings) {
    written_size_ = 0;
    columns_are_new_ = true;
    write_failed_ = false;
    one_file_per_result_set_ = settings.Flag(kOneFilePerResultSet);
    String name;
    return ReadName(error, settings, name) && ReadSettings(error, settings) &&
           OpenFile(error, name);
}

bool FileTarget::NextResultSet(String& error, const SectionSettings& settings) {
    columns_are_new_ = true;
    if (write_failed_) return false;
    if (!one_file_per_result_set_) return ContinueFile(error);
    String name;
    return LeaveFile(error) && ReadName(error, settings, name) && OpenFile(error, name);
}

bool FileTarget::Close(String& error) {
    const bool ended = EndFile(error);
    CloseFile();
    return ended && !write_failed_;
}

bool FileTarget::OpenFile(String& error, const String& name) {
    ErrorRecord open_error;
    file_is_open_ = file_.Open(open_error, name, encoding_, append_);
    if (file_is_open_) return BeginFile(error);
    error = open_error.text;
    return false;
}

void FileTarget::CloseFile() {
    file_.Close();
    file_is_open_ = false;
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
    ErrorRecord write_error;
    if (file_.Write(write_error, text, &bytes)) return true;
    bytes = 0;
    write_failed_ = true;
    error = write_error.text;
    return false;
}

}  // namespace DataConsumers
