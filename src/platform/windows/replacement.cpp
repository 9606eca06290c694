#include "platform/replacement.h"

#include <windows.h>

#include <array>
#include <cstddef>
#include <cstring>
#include <mutex>
#include <optional>
#include <vector>

#include "platform/system_error.h"
#include "platform/windows/handle.h"
#include "platform/windows/native_path.h"
#include "platform/windows/open_file.h"
#include "platform/windows/wide.h"

namespace platform {
namespace {

using Refusal = Replacement::Refusal;

constexpr DWORD kReadAndWrite = GENERIC_READ | GENERIC_WRITE;

Handle OpenExisting(const String& name, DWORD access, DWORD sharing) {
    // Folders are opened with backup semantics only.
    return Handle(::CreateFileW(AsWide(name), access, sharing, nullptr, OPEN_EXISTING,
                                FILE_FLAG_BACKUP_SEMANTICS, nullptr));
}

std::optional<BY_HANDLE_FILE_INFORMATION> Information(HANDLE file) {
    BY_HANDLE_FILE_INFORMATION found{};
    if (::GetFileInformationByHandle(file, &found) == FALSE) return std::nullopt;
    return found;
}

// The name that `name` leads to through links, as what is renamed onto a link takes the place of
// the link itself.
String Behind(const String& name) {
    const DWORD attributes = ::GetFileAttributesW(AsWide(name));
    const bool plain =
        attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0;
    if (plain) return name;
    const Handle file = OpenExisting(name, 0, FILE_SHARE_READ | FILE_SHARE_WRITE);
    String found(32'768, u'\0');  // the longest name that there is
    const DWORD length = file.Valid() ? ::GetFinalPathNameByHandleW(
                                            file.Get(), AsWide(found.data()),
                                            static_cast<DWORD>(found.size()), FILE_NAME_NORMALIZED)
                                      : 0;
    if (length == 0 || length >= found.size()) return name;
    found.resize(length);
    return found;
}

// The parts that are being made. The console tells of its end in a thread of its own.
std::mutex& Guard() {
    static std::mutex guard;
    return guard;
}

std::vector<HANDLE>& Parts() {
    static std::vector<HANDLE> parts;
    return parts;
}

// Has a file go with its last handle.
void RemoveOnClose(HANDLE file) {
    FILE_DISPOSITION_INFO gone{TRUE};
    ::SetFileInformationByHandle(file, FileDispositionInfo, &gone, sizeof gone);
}

// The process ends behind this; its handles are closed then. The guard is kept, so that nothing
// gets in place any more.
BOOL WINAPI OnEnding(DWORD /*event*/) {
    Guard().lock();
    for (const HANDLE part : Parts()) RemoveOnClose(part);
    return FALSE;
}

// The rights of another file, and its owner, as far as the user may.
void TakeRights(const String& part, const String& old) {
    for (const SECURITY_INFORMATION what :
         {DACL_SECURITY_INFORMATION, OWNER_SECURITY_INFORMATION | GROUP_SECURITY_INFORMATION}) {
        DWORD size = 0;
        ::GetFileSecurityW(AsWide(old), what, nullptr, 0, &size);
        std::vector<std::byte> rights(size);
        if (size != 0 &&
            ::GetFileSecurityW(AsWide(old), what, rights.data(), size, &size) != FALSE) {
            ::SetFileSecurityW(AsWide(part), what, rights.data());
        }
    }
    const DWORD attributes = ::GetFileAttributesW(AsWide(old));
    if (attributes != INVALID_FILE_ATTRIBUTES) ::SetFileAttributesW(AsWide(part), attributes);
}

// A new file that nobody else may write, rename or delete. What a killed run left goes first; what
// another run holds cannot be deleted, which is a sharing violation.
Handle CreateLocked(const String& part) {
    for (;;) {
        Handle made(::CreateFileW(AsWide(part), kReadAndWrite | DELETE, FILE_SHARE_READ, nullptr,
                                  CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
        if (made.Valid() || ::GetLastError() != ERROR_FILE_EXISTS) return made;
        const bool gone = ::DeleteFileW(AsWide(part)) != FALSE;
        if (!gone && ::GetLastError() != ERROR_FILE_NOT_FOUND) return made;
    }
}

class WindowsReplacement final : public Replacement {
public:
    WindowsReplacement(String target, String part, Handle file, bool has_old)
        : target_(std::move(target)),
          part_(std::move(part)),
          file_(std::move(file)),
          has_old_(has_old) {
        const std::lock_guard lock(Guard());
        static const BOOL listens = ::SetConsoleCtrlHandler(OnEnding, TRUE);
        static_cast<void>(listens);
        Parts().push_back(file_.Get());
    }
    ~WindowsReplacement() override {
        const std::lock_guard lock(Guard());
        if (!placed_) RemoveOnClose(file_.Get());
        Forget();
    }

    bool IsFor(const String& name) const override {
        const Handle other = OpenExisting(PartNameOf(Behind(name)), 0,
                                          FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE);
        const auto found = Information(other.Get());
        const auto own = Information(file_.Get());
        return found && own && found->dwVolumeSerialNumber == own->dwVolumeSerialNumber &&
               found->nFileIndexHigh == own->nFileIndexHigh &&
               found->nFileIndexLow == own->nFileIndexLow;
    }

    bool HasOld() const override { return has_old_; }

    std::unique_ptr<OutputFile> Open(ErrorRecord& error) override {
        HANDLE copy = INVALID_HANDLE_VALUE;
        const HANDLE process = ::GetCurrentProcess();
        const bool opened = ::DuplicateHandle(process, file_.Get(), process, &copy, 0, FALSE,
                                              DUPLICATE_SAME_ACCESS) != FALSE;
        Handle owner(opened ? copy : INVALID_HANDLE_VALUE);
        if (!Told(error, opened && ToStart())) return nullptr;
        return OutputFileOn(std::move(owner));
    }

    bool Empty(ErrorRecord& error) override {
        return Told(error, ToStart() && ::SetEndOfFile(file_.Get()) != FALSE);
    }

    bool FlushToDisk(ErrorRecord& error) override {
        return Told(error, ::FlushFileBuffers(file_.Get()) != FALSE);
    }

    // By its handle, as whoever closed it first would leave it to another run for a moment.
    bool PutInPlace(ErrorRecord& error) override {
        const std::lock_guard lock(Guard());
        std::vector<std::byte> room(sizeof(FILE_RENAME_INFO) + target_.size() * sizeof(wchar_t));
        auto* const rename = reinterpret_cast<FILE_RENAME_INFO*>(room.data());
        rename->ReplaceIfExists = TRUE;
        rename->FileNameLength = static_cast<DWORD>(target_.size() * sizeof(wchar_t));
        std::memcpy(rename->FileName, target_.data(), rename->FileNameLength);
        placed_ =
            Told(error, ::SetFileInformationByHandle(file_.Get(), FileRenameInfo, rename,
                                                     static_cast<DWORD>(room.size())) != FALSE);
        return placed_;
    }

private:
    static bool Told(ErrorRecord& error, bool done) {
        if (!done) error = SystemError();
        return done;
    }

    bool ToStart() const {
        return ::SetFilePointerEx(file_.Get(), LARGE_INTEGER{}, nullptr, FILE_BEGIN) != FALSE;
    }

    void Forget() { std::erase(Parts(), file_.Get()); }

    const String target_;  // its full name
    const String part_;
    Handle file_;
    const bool has_old_;
    bool placed_ = false;
};

std::unique_ptr<Replacement> Refuse(ErrorRecord& error, Refusal& refusal, Refusal why) {
    error = SystemError();
    refusal = why;
    return nullptr;
}

// The full name, which a rename by handle needs.
String FullName(const String& name) {
    const DWORD size = ::GetFullPathNameW(AsWide(name), 0, nullptr, nullptr);
    String full(size, u'\0');
    full.resize(::GetFullPathNameW(AsWide(name), size, AsWide(full.data()), nullptr));
    return full;
}

// Whether the file that is there may be written and replaced; one that another program holds open
// may not.
bool MayReplace(ErrorRecord& error, Refusal& refusal, const String& target) {
    const Handle written = OpenExisting(target, kReadAndWrite, FILE_SHARE_READ);
    if (!written.Valid()) {
        const bool is_new = ::GetLastError() == ERROR_FILE_NOT_FOUND;
        return is_new || Refuse(error, refusal, Refusal::NotWritable);
    }
    const auto found = Information(written.Get());
    if (found && found->nNumberOfLinks > 1) {
        refusal = Refusal::NoPart;
        error = {u"the file has several hard links", ERROR_TOO_MANY_LINKS};
        return false;
    }
    return true;
}

// The same of the right to delete it, without which it cannot be replaced.
bool MayDelete(ErrorRecord& error, Refusal& refusal, const String& target) {
    const Handle deleted = OpenExisting(target, DELETE, FILE_SHARE_READ);
    const bool may = deleted.Valid() || ::GetLastError() == ERROR_FILE_NOT_FOUND;
    return may || Refuse(error, refusal, Refusal::NoPart);
}

}  // namespace

bool Replacement::AppliesTo(const String& name) {
    if (name.empty() || HoldsZero(name) || NamesDevice(name)) return false;
    const DWORD attributes = ::GetFileAttributesW(AsWide(name));
    if (attributes == INVALID_FILE_ATTRIBUTES) return ::GetLastError() == ERROR_FILE_NOT_FOUND;
    return (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

std::unique_ptr<Replacement> Replacement::Begin(ErrorRecord& error, Refusal& refusal,
                                                const String& name) {
    const String target = FullName(Behind(name));
    if (!MayReplace(error, refusal, target) || !MayDelete(error, refusal, target)) return nullptr;
    const bool exists = PathExists(target);
    const String part = PartNameOf(target);
    Handle file = CreateLocked(part);
    if (!file.Valid()) {
        const bool held = ::GetLastError() == ERROR_SHARING_VIOLATION;
        const Refusal other = exists ? Refusal::NoPart : Refusal::NotWritable;
        return Refuse(error, refusal, held ? Refusal::Held : other);
    }
    if (exists) TakeRights(part, target);
    return std::make_unique<WindowsReplacement>(target, part, std::move(file), exists);
}

}  // namespace platform
