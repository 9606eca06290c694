#include "platform/replacement.h"

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/xattr.h>

#include <cerrno>
#include <filesystem>
#include <optional>
#include <vector>

#include "base/utf8.h"
#include "platform/posix/descriptor.h"
#include "platform/posix/file_likeness.h"
#include "platform/posix/native_path.h"
#include "platform/posix/open_file.h"
#include "platform/posix/removed_at_end.h"
#include "platform/system_error.h"

namespace platform {
namespace {

namespace fs = std::filesystem;

using Status = struct stat;
using Refusal = Replacement::Refusal;

// A relative name without a folder is in the current one.
fs::path FolderOf(const fs::path& name) {
    const fs::path folder = name.parent_path();
    return folder.empty() ? fs::path(".") : folder;
}

// What a link there leads to is open already in some process: /dev/stdout, /proc/self/fd/1.
bool IsProcessFolder(const fs::path& folder) {
    struct statfs found {};
    return ::statfs(folder.c_str(), &found) == 0 && found.f_type == PROC_SUPER_MAGIC;
}

// The name that `name` leads to through links, as what is renamed onto a link takes the place of
// the link itself. Nothing for a link into a process.
std::optional<fs::path> Behind(fs::path name) {
    constexpr int kMostLinks = 40;
    std::error_code code;
    for (int links = 0; links < kMostLinks && fs::is_symlink(fs::symlink_status(name, code));
         ++links) {
        if (IsProcessFolder(FolderOf(name))) return std::nullopt;
        name = name.parent_path() / fs::read_symlink(name, code);
    }
    return name;
}

fs::path PartOf(const fs::path& target) {
    return target.native() + ToNativeBytes(Replacement::PartNameOf({}));
}

bool FailWith(int reason) {
    errno = reason;
    return false;
}

// Whether the part file of a killed run, or none, stands under the name: it is gone afterwards.
bool RemoveLeftOver(const fs::path& part) {
    const Descriptor left(OpenDescriptor(part.native(), O_RDWR | O_NOFOLLOW | O_NONBLOCK));
    if (left.Get() < 0) return errno == ENOENT;
    Status status{};
    if (::fstat(left.Get(), &status) != 0) return false;
    if (!S_ISREG(status.st_mode)) return FailWith(EEXIST);
    if (!LockForWriting(left.Get())) return false;
    // Whoever removes one holds its lock, so nobody else's can be under the name by now.
    const Named named = IsNamed(left.Get(), part.native());
    return named == Named::No || (named == Named::Yes && ::unlink(part.c_str()) == 0);
}

// A new file, locked; -1 with errno, EWOULDBLOCK when another run holds the one that is there.
// Throws nothing: nobody would know of a file that has just been made.
Descriptor CreateLocked(const fs::path& part, mode_t rights) {
    for (;;) {
        Descriptor made(OpenDescriptor(part.native(), O_RDWR | O_CREAT | O_EXCL, rights));
        const bool own = made.Get() >= 0 && LockForWriting(made.Get());
        const Named named = own ? IsNamed(made.Get(), part.native()) : Named::No;
        if (named == Named::Yes) return made;
        if (named == Named::Unknown) {
            const int reason = errno;
            ::unlink(part.c_str());
            FailWith(reason);
            return Descriptor(-1);
        }
        const bool taken = made.Get() >= 0 || errno == EEXIST;  // by one who looks at what is left
        if (!taken || !RemoveLeftOver(part)) return Descriptor(-1);
    }
}

// Whether a file can take the place of `target`, as far as can be told beforehand.
bool IsReplaceable(const fs::path& target, const Status& old) {
    Status folder{};
    if (::stat(FolderOf(target).c_str(), &folder) != 0) return false;
    const uid_t user = ::geteuid();
    const bool others = user != 0 && user != old.st_uid && user != folder.st_uid;
    if ((folder.st_mode & S_ISVTX) != 0 && others) return FailWith(EPERM);
    struct statx found {};
    const bool told = ::statx(AT_FDCWD, target.c_str(), 0, 0, &found) == 0;
    const bool mounted = told && (found.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0;
    return !mounted || FailWith(EBUSY);
}

// A list of access rights, where the old file has one.
bool TakeAccessList(int file, int old) {
    constexpr const char* kName = "system.posix_acl_access";
    const ssize_t size = ::fgetxattr(old, kName, nullptr, 0);
    if (size < 0) return true;
    std::vector<char> list(static_cast<std::size_t>(size));
    const ssize_t got = ::fgetxattr(old, kName, list.data(), list.size());
    return got == size && ::fsetxattr(file, kName, list.data(), list.size(), 0) == 0;
}

// The user may be refused the owner or the group, never the rights.
bool MakeLike(int file, int old) {
    Status status{};
    if (::fstat(old, &status) != 0) return false;
    if (!TakeOwner(file, status)) {
        status.st_uid = ::geteuid();
        status.st_mode &= ~static_cast<mode_t>(S_ISUID | S_ISGID);
        TakeOwner(file, status);
    }
    return TakeRights(file, status) && TakeAccessList(file, old);
}

class PosixReplacement final : public Replacement {
public:
    explicit PosixReplacement(fs::path target)
        : target_(std::move(target)), part_(PartOf(target_)) {}
    ~PosixReplacement() override {
        const SignalsHeld held;
        if (removed_) ::unlink(part_.c_str());
        removed_.reset();
    }

    // old: locked; -1 where there is none
    bool Create(Descriptor old) {
        constexpr mode_t kNewFileMode = 0666;  // less the user's umask
        const SignalsHeld held;
        removed_.emplace(part_.native());  // before there is a file, as it may lack memory
        file_.emplace(CreateLocked(part_, old.Get() < 0 ? kNewFileMode : S_IRUSR | S_IWUSR));
        if (file_->Get() < 0) {
            removed_.reset();
            return false;
        }
        old_.emplace(std::move(old));
        return old_->Get() < 0 || MakeLike(file_->Get(), old_->Get());
    }

    bool IsFor(const String& name) const override {
        const auto target = Behind(ToNativeBytes(name));
        return target && IsNamed(file_->Get(), PartOf(*target).native()) == Named::Yes;
    }

    bool HasOld() const override { return old_->Get() >= 0; }

    std::unique_ptr<OutputFile> Open(ErrorRecord& error) override {
        Descriptor copy(::fcntl(file_->Get(), F_DUPFD_CLOEXEC, 0));
        if (!Told(error, copy.Get() >= 0 && ::lseek(copy.Get(), 0, SEEK_SET) == 0)) return nullptr;
        return OutputFileOn(std::move(copy));
    }

    bool Empty(ErrorRecord& error) override { return Told(error, EmptyFile(file_->Get())); }

    bool FlushToDisk(ErrorRecord& error) override {
        return Told(error, platform::FlushToDisk(file_->Get()));
    }

    bool PutInPlace(ErrorRecord& error) override {
        const SignalsHeld held;
        if (!Told(error, ::rename(part_.c_str(), target_.c_str()) == 0)) return false;
        removed_.reset();
        // The name is in the folder. Not every file system lets a folder be flushed.
        const Descriptor folder(OpenDescriptor(FolderOf(target_).native(), O_RDONLY | O_DIRECTORY));
        if (folder.Get() >= 0) platform::FlushToDisk(folder.Get());
        return true;
    }

private:
    static bool Told(ErrorRecord& error, bool done) {
        if (!done) error = SystemError();
        return done;
    }

    const fs::path target_;
    const fs::path part_;
    std::optional<Descriptor> old_;        // keeps other writers away
    std::optional<Descriptor> file_;       // keeps the part file ours
    std::optional<RemovedAtEnd> removed_;  // nothing where there is nothing to remove
};

std::unique_ptr<Replacement> Refuse(ErrorRecord& error, Refusal& refusal, Refusal why) {
    error = SystemError();
    refusal = why;
    return nullptr;
}

}  // namespace

bool Replacement::AppliesTo(const String& name) {
    if (name.empty() || HoldsZero(name)) return false;
    const std::string native = ToNativeBytes(name);
    Status status{};
    const bool found = ::stat(native.c_str(), &status) == 0;
    return (found ? S_ISREG(status.st_mode) : errno == ENOENT) && Behind(native);
}

std::unique_ptr<Replacement> Replacement::Begin(ErrorRecord& error, Refusal& refusal,
                                                const String& name) {
    const fs::path target = Behind(ToNativeBytes(name)).value_or(fs::path());
    Descriptor old = OpenLocked(target, O_RDWR);
    const bool exists = old.Get() >= 0;
    if (!exists && errno != ENOENT) return Refuse(error, refusal, Refusal::NotWritable);
    Status status{};
    if (exists && ::fstat(old.Get(), &status) == 0 && status.st_nlink > 1) {
        refusal = Refusal::NoPart;
        error = {u"the file has several hard links", EMLINK};
        return nullptr;
    }
    if (exists && !IsReplaceable(target, status)) return Refuse(error, refusal, Refusal::NoPart);
    auto made = std::make_unique<PosixReplacement>(target);
    if (made->Create(std::move(old))) return made;
    // Where the folder takes no file at all, writing the target itself is no way out.
    const bool no_way = !exists && errno != ENAMETOOLONG;
    const Refusal other = no_way ? Refusal::NotWritable : Refusal::NoPart;
    return Refuse(error, refusal, errno == EWOULDBLOCK ? Refusal::Held : other);
}

}  // namespace platform
