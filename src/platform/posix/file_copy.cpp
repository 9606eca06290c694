#include "platform/posix/file_copy.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <span>
#include <vector>

#include "platform/posix/descriptor.h"
#include "platform/posix/file_likeness.h"
#include "platform/posix/part_file.h"
#include "platform/system_error.h"

namespace platform {
namespace {

namespace fs = std::filesystem;

using Status = struct stat;

constexpr std::size_t kPieceBytes = 262'144;

// The helpers below leave their reason in errno, from where it gets into the record at last.
bool Report(ErrorRecord& error, bool done) {
    if (!done) error = SystemError();
    return done;
}

bool FailWith(int reason) {
    errno = reason;
    return false;
}

// Looks up a file to copy; fails for what is none.
bool FindRegular(const fs::path& name, Status& status) {
    if (::stat(name.c_str(), &status) != 0) return false;
    return S_ISREG(status.st_mode) || FailWith(ENOTSUP);
}

bool CopyBytes(int from, int to) {
    if (::lseek(from, 0, SEEK_SET) != 0) return false;
    std::vector<std::byte> buffer(kPieceBytes);
    for (;;) {
        const ssize_t count =
            Uninterrupted([&] { return ::read(from, buffer.data(), buffer.size()); });
        if (count <= 0) return count == 0;
        const std::span piece(buffer.data(), static_cast<std::size_t>(count));
        if (WriteFully(to, piece) != piece.size()) return false;
    }
}

// As well as it goes: not every file system keeps it, and only an owner may set it.
void SetTimeOfWriting(int file, const Status& source) {
    const timespec times[] = {{0, UTIME_OMIT}, source.st_mtim};
    ::futimens(file, times);
}

// Fills a part with what `in` reads and gives it its place.
// old: what it replaces and is to be like; null: it takes the rights of its source
// flush: whether it must be on the disk before, as otherwise a power failure could leave neither
bool PutCopyInPlace(PartFile& part, int in, const Status& source, const Status* old, bool flush) {
    Descriptor out = part.Create();
    if (out.Get() < 0 || !CopyBytes(in, out.Get())) return false;
    SetTimeOfWriting(out.Get(), source);
    const bool like = old != nullptr ? TakeOwner(out.Get(), *old) && TakeRights(out.Get(), *old)
                                     : TakeRights(out.Get(), source);
    return like && (!flush || FlushToDisk(out.Get())) && out.Close() && part.PutInPlace();
}

// Writes into the file itself. Copies onto the same file wait for each other; that lock is none
// that a file which is being written holds, so a job can copy over its own log.
bool CopyInPlace(int in, const Status& source, const fs::path& to, bool exists) {
    Descriptor out(OpenDescriptor(to.native(), O_WRONLY | (exists ? 0 : O_CREAT), S_IWUSR));
    if (out.Get() < 0) return false;
    struct flock whole {};
    whole.l_type = F_WRLCK;
    Uninterrupted([&] { return ::fcntl(out.Get(), F_OFD_SETLKW, &whole); });
    if (!exists && !TakeRights(out.Get(), source)) return false;
    if (!EmptyFile(out.Get()) || !CopyBytes(in, out.Get())) return false;
    SetTimeOfWriting(out.Get(), source);
    return out.Close();
}

// True where another file may take the place of `old`: further names would keep the old content,
// and a list of access rights would be lost.
bool IsReplaceable(const fs::path& name, const Status& old) {
    return old.st_nlink == 1 && ::getxattr(name.c_str(), "system.posix_acl_access", nullptr, 0) < 0;
}

// True when a folder does not take a part or does not let it replace a file: no right to, a sticky
// folder with the file of somebody else, a file that is a mount point, too long a path. The file
// itself may be open to writing all the same.
bool IsRefusal(int reason) {
    return reason == EACCES || reason == EPERM || reason == EROFS || reason == EBUSY ||
           reason == ENAMETOOLONG;
}

// Where a part is to go that takes the place of what `to` leads to; empty where none can.
// old: the file under the new name; null: none
fs::path PlaceOf(const fs::path& to, const Status* old) {
    std::error_code code;
    const bool link = fs::is_symlink(fs::symlink_status(to, code));
    if (old == nullptr) return link ? fs::path() : to;  // behind the link there is no name yet
    if (!IsReplaceable(to, *old)) return {};
    return link ? fs::canonical(to, code) : to;
}

bool Copy(int in, const Status& source, const fs::path& to, const Status* old) {
    const fs::path place = PlaceOf(to, old);
    if (place.has_filename()) {
        PartFile part(place);
        if (PutCopyInPlace(part, in, source, old, old != nullptr)) return true;
        if (!IsRefusal(errno)) return false;
    }
    return CopyInPlace(in, source, to, old != nullptr);
}

bool OpenAndCopy(const fs::path& from, const fs::path& to) {
    Status old{};
    const bool exists = ::stat(to.c_str(), &old) == 0;
    if (!exists && errno != ENOENT && errno != ENOTDIR) return false;
    Status source{};
    if (!FindRegular(from, source)) return false;
    if (exists && !S_ISREG(old.st_mode)) return FailWith(ENOTSUP);
    if (exists && IsSameFile(source, old)) return FailWith(EEXIST);
    const Descriptor in(OpenDescriptor(from.native(), O_RDONLY));
    if (in.Get() < 0) return false;
    // Replacing a file would not ask for the right to write it.
    if (exists && Descriptor(OpenDescriptor(to.native(), O_WRONLY)).Get() < 0) return false;
    return Copy(in.Get(), source, to, exists ? &old : nullptr);
}

// Where a source cannot be removed, this mostly shows before anything is replaced.
bool MayRemove(const fs::path& name) {
    const fs::path folder = name.parent_path();
    return ::access(folder.empty() ? "." : folder.c_str(), W_OK | X_OK) == 0;
}

bool PutAnyInPlace(const fs::path& from, const fs::path& to) {
    PartFile part(to);
    std::error_code code;
    if (fs::is_symlink(fs::symlink_status(from, code)))
        return part.CreateLink(from) && part.PutInPlace();
    Status source{};
    if (!FindRegular(from, source)) return false;
    const Descriptor in(OpenDescriptor(from.native(), O_RDONLY));
    return in.Get() >= 0 && PutCopyInPlace(part, in.Get(), source, nullptr, true);
}

}  // namespace

bool CopyRegularFile(ErrorRecord& error, const fs::path& from, const fs::path& to) {
    return Report(error, OpenAndCopy(from, to));
}

bool MoveByCopy(ErrorRecord& error, const fs::path& from, const fs::path& to) {
    Status source{};
    Status target{};
    // One folder may be mounted at two places: there is nothing to move, as in the system's own
    // call for two names of one file.
    if (::lstat(from.c_str(), &source) == 0 && ::lstat(to.c_str(), &target) == 0 &&
        IsSameFile(source, target)) {
        return true;
    }
    return Report(error, MayRemove(from) && PutAnyInPlace(from, to) && ::unlink(from.c_str()) == 0);
}

}  // namespace platform
