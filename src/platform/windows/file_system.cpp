#include "platform/file_system.h"

#include <windows.h>

#include <algorithm>

#include "platform/system_error.h"
#include "platform/windows/handle.h"
#include "platform/windows/native_path.h"
#include "platform/windows/open_file.h"
#include "platform/windows/wide.h"

namespace platform {
namespace {

// Moves by `distance` from `origin`; the new position, or -1.
std::int64_t Move(HANDLE handle, std::int64_t distance, DWORD origin) {
    LARGE_INTEGER wanted{};
    wanted.QuadPart = distance;
    LARGE_INTEGER position{};
    return ::SetFilePointerEx(handle, wanted, &position, origin) == FALSE ? -1 : position.QuadPart;
}

bool IsDisk(HANDLE handle) { return ::GetFileType(handle) == FILE_TYPE_DISK; }

// The handle of `name`; invalid, with the thread's last error set, when it cannot be opened.
Handle OpenHandle(const String& name, DWORD access, DWORD sharing, SECURITY_ATTRIBUTES* security,
                  DWORD disposition, DWORD flags) {
    if (HoldsZero(name)) {
        ::SetLastError(ERROR_INVALID_NAME);
        return Handle(INVALID_HANDLE_VALUE);
    }
    return Handle(
        ::CreateFileW(AsWide(name), access, sharing, security, disposition, flags, nullptr));
}

// Waits until a pipe has something to read, or for as long as a pause takes: there is no object
// that tells of a pipe's data.
bool PipeIsSilent(HANDLE pipe) {
    const ULONGLONG start = ::GetTickCount64();
    for (;;) {
        DWORD there = 0;
        if (::PeekNamedPipe(pipe, nullptr, 0, nullptr, &there, nullptr) == FALSE || there != 0) {
            return false;  // or its writer is gone
        }
        const ULONGLONG waited = ::GetTickCount64() - start;
        if (waited >= PauseListener::kPauseMs) return true;
        ::Sleep(waited < 20 ? 0 : 1);
    }
}

void TellOfPause(HANDLE input) {
    const DWORD type = ::GetFileType(input);
    const bool silent =
        type == FILE_TYPE_PIPE
            ? PipeIsSilent(input)
            : type == FILE_TYPE_CHAR &&
                  ::WaitForSingleObject(input, PauseListener::kPauseMs) == WAIT_TIMEOUT;
    if (silent) PauseListener::Tell();
}

class WindowsInputFile final : public InputFile {
public:
    explicit WindowsInputFile(Handle handle) : handle_(std::move(handle)) {}

    std::optional<std::uint64_t> Size() override {
        LARGE_INTEGER size{};
        if (!IsDisk(handle_.Get())) return std::nullopt;
        if (::GetFileSizeEx(handle_.Get(), &size) == FALSE) return std::nullopt;
        return static_cast<std::uint64_t>(size.QuadPart);
    }

protected:
    std::int64_t ReadSome(std::span<std::byte> bytes) override {
        constexpr std::size_t kMostPerCall = 0x40000000;
        const auto wanted = static_cast<DWORD>(std::min(bytes.size(), kMostPerCall));
        if (PauseListener::IsThere()) TellOfPause(handle_.Get());
        DWORD count = 0;
        if (::ReadFile(handle_.Get(), bytes.data(), wanted, &count, nullptr) != FALSE) return count;
        return ::GetLastError() == ERROR_BROKEN_PIPE ? 0 : -1;  // the writer of a pipe is done
    }

private:
    Handle handle_;
};

class WindowsOutputFile final : public OutputFile {
public:
    explicit WindowsOutputFile(Handle handle) : handle_(std::move(handle)) {}

    bool IsRegular() const override { return IsDisk(handle_.Get()); }
    bool IsTerminal() const override {
        DWORD mode = 0;
        return ::GetConsoleMode(handle_.Get(), &mode) != FALSE;
    }

    bool Write(ErrorRecord& error, std::span<const std::byte> bytes) override {
        ::SetLastError(ERROR_SUCCESS);
        const std::size_t written = WriteFully(handle_.Get(), bytes);
        if (written == bytes.size()) return true;
        const DWORD code = ::GetLastError();  // a write that was cut short may set none
        error = SystemError(code == ERROR_SUCCESS ? ERROR_DISK_FULL : code);
        CutBack(written);
        return false;
    }

    bool ReadAt(ErrorRecord& error, std::uint64_t position, std::span<std::byte> bytes,
                std::size_t& count) override {
        DWORD got = 0;
        if (Move(handle_.Get(), static_cast<std::int64_t>(position), FILE_BEGIN) < 0 ||
            ::ReadFile(handle_.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &got,
                       nullptr) == FALSE) {
            error = SystemError();
            return false;
        }
        count = got;
        return true;
    }

    bool SeekEnd(ErrorRecord& error, std::uint64_t& position) override {
        position = 0;
        if (!IsRegular()) return true;
        const std::int64_t end = Move(handle_.Get(), 0, FILE_END);
        if (end < 0) {
            error = SystemError();
            return false;
        }
        position = static_cast<std::uint64_t>(end);
        return true;
    }

    bool Close(ErrorRecord& error) override {
        if (handle_.Close()) return true;
        error = SystemError();
        return false;
    }

private:
    // Takes the last `count` bytes off again.
    void CutBack(std::size_t count) {
        if (count == 0) return;
        if (Move(handle_.Get(), -static_cast<std::int64_t>(count), FILE_CURRENT) < 0) return;
        ::SetEndOfFile(handle_.Get());
    }

    Handle handle_;
};

DWORD DispositionOf(OutputFile::Mode mode) {
    switch (mode) {
        case OutputFile::Mode::CreateNew:
            return CREATE_NEW;
        case OutputFile::Mode::Truncate:
            return TRUNCATE_EXISTING;
        case OutputFile::Mode::OpenExisting:
            break;
    }
    return OPEN_EXISTING;
}

}  // namespace

bool NamesDevice(const String& name) {
    String full(MAX_PATH, u'\0');
    const DWORD length = ::GetFullPathNameW(AsWide(name), MAX_PATH, AsWide(full.data()), nullptr);
    if (length == 0 || length >= MAX_PATH) return false;  // devices have short names
    full.resize(length);
    const bool in_volume = full.size() > 6 && full[5] == u':' && full[6] == u'\\';
    return full.starts_with(u"\\\\.\\") && !in_volume;
}

std::unique_ptr<OutputFile> OutputFileOn(Handle handle) {
    return std::make_unique<WindowsOutputFile>(std::move(handle));
}

bool PathExists(const String& name) {
    return !HoldsZero(name) && ::GetFileAttributesW(AsWide(name)) != INVALID_FILE_ATTRIBUTES;
}

String RootedName(const String& name) {
    const DWORD size = HoldsZero(name) ? 0 : ::GetFullPathNameW(AsWide(name), 0, nullptr, nullptr);
    if (size == 0) return name;
    String full(size, u'\0');
    full.resize(::GetFullPathNameW(AsWide(name), size, AsWide(full.data()), nullptr));
    while (full.ends_with(u'\\')) full.pop_back();
    ::CharUpperBuffW(AsWide(full.data()), static_cast<DWORD>(full.size()));
    return full;
}

std::optional<FileIdentity> IdentityOf(const String& name) {
    constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    // Folders are opened with backup semantics only.
    const Handle handle =
        OpenHandle(name, 0, kShareAll, nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS);
    BY_HANDLE_FILE_INFORMATION found{};
    if (!handle.Valid() || ::GetFileInformationByHandle(handle.Get(), &found) == FALSE)
        return std::nullopt;
    const std::uint64_t high = found.nFileIndexHigh;
    return FileIdentity{found.dwVolumeSerialNumber, (high << 32) | found.nFileIndexLow};
}

std::unique_ptr<InputFile> InputFile::Open(ErrorRecord& error, const String& name) {
    // What is read may be replaced meanwhile, by this run too.
    constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    Handle handle =
        OpenHandle(name, GENERIC_READ, kShareAll, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL);
    if (!handle.Valid()) {
        error = SystemError();
        return nullptr;
    }
    return std::make_unique<WindowsInputFile>(std::move(handle));
}

std::unique_ptr<InputFile> InputFile::StandardInput() {
    return std::make_unique<WindowsInputFile>(
        Handle(::GetStdHandle(STD_INPUT_HANDLE), Handle::Ownership::Borrowed));
}

std::unique_ptr<OutputFile> OutputFile::Open(ErrorRecord& error, const String& name, Mode mode) {
    SECURITY_ATTRIBUTES inheritable{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    const bool device = NamesDevice(name);
    // The mark of a file must be read before something is added to it.
    const DWORD access = device ? GENERIC_WRITE : GENERIC_READ | GENERIC_WRITE;
    const DWORD sharing = device ? FILE_SHARE_READ | FILE_SHARE_WRITE : FILE_SHARE_READ;
    Handle handle = OpenHandle(name, access, sharing, &inheritable,
                               device ? OPEN_EXISTING : DispositionOf(mode), FILE_ATTRIBUTE_NORMAL);
    if (!handle.Valid()) {
        error = SystemError();
        return nullptr;
    }
    return std::make_unique<WindowsOutputFile>(std::move(handle));
}

}  // namespace platform
