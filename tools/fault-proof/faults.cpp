// A library to be loaded before all others (LD_PRELOAD) that makes one call of a program fail.
//
//   FAULT_CALLS   which calls are counted: file, memory or network
//   FAULT_KIND    fail, fail-on (this call and all that follow), short (reads and writes move less
//                 than they could), interrupt (a signal has come in between) or kill (the process
//                 ends before the call)
//   FAULT_AT      the number of the call, from 1, among those that this can happen to
//   FAULT_REPORT  a file: gets "hit CALL WHAT" when the fault happens, "counted N" at the end
//
// Only calls between the start and the end of main() are counted: what the loader and static
// objects do is not the program's work. ODBC's driver manager, what it loads drivers with, and the
// C library are spared: they do not look at what malloc() returns, or tell nobody that a file could
// not be read. ODBC drivers are not refused memory, for the same reason.
#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <link.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/sendfile.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

enum class Calls { None, File, Memory, Network };
enum class Kind { Fail, FailOn, Short, Interrupt, Kill };

// What a fault may do to a call beside failing it.
enum class Way { Plain, Interruptible, Partial };

Calls g_calls = Calls::None;
Kind g_kind = Kind::Fail;
long g_at = 0;  // none
int g_report = -1;
std::atomic<bool> g_running = false;
std::atomic<long> g_count = 0;
thread_local bool t_inside = false;  // in a call that is looked at already

// ---- Telling ----

// By system calls of its own, which are no part of what is counted.
void Tell(const char* first, const char* second, const char* third) {
    if (g_report < 0) return;
    std::array<char, 512> line{};
    const int length =
        std::snprintf(line.data(), line.size(), "%s %s %.400s\n", first, second, third);
    ::syscall(SYS_write, g_report, line.data(), static_cast<std::size_t>(length));
}

// ---- Modules ----

constexpr std::size_t kMostModules = 128;
struct Module {
    std::uintptr_t first, last;
    bool is_spared;
};
std::array<Module, kMostModules> g_modules;
std::size_t g_module_count = 0;

int NoteModule(dl_phdr_info* info, std::size_t, void*) {
    if (g_module_count == kMostModules) return 0;
    Module& module = g_modules[g_module_count++];
    const auto is = [&](const char* name) { return std::strstr(info->dlpi_name, name) != nullptr; };
    module = {UINTPTR_MAX, 0, is("libodbc") || is("libltdl") || is("libc.so")};
    for (int i = 0; i < info->dlpi_phnum; ++i) {
        const auto& part = info->dlpi_phdr[i];
        if (part.p_type != PT_LOAD) continue;
        const std::uintptr_t start = info->dlpi_addr + part.p_vaddr;
        module.first = std::min(module.first, start);
        module.last = std::max(module.last, start + part.p_memsz);
    }
    return 0;
}

// Whether faults happen to whoever calls from there. Drivers were loaded later than all modules
// that are known.
bool IsConcerned(Calls calls, const void* caller) {
    const auto address = reinterpret_cast<std::uintptr_t>(caller);
    for (std::size_t i = 0; i < g_module_count; ++i) {
        const Module& module = g_modules[i];
        if (address >= module.first && address < module.last) return !module.is_spared;
    }
    return calls != Calls::Memory;
}

// ---- Counting ----

bool IsConcerned(Way way) {
    if (g_kind == Kind::Short) return way == Way::Partial;
    if (g_kind == Kind::Interrupt) return way != Way::Plain;
    return true;
}

// True when this call is the one that a fault happens to.
bool Strikes(Calls calls, Way way, const char* name, const char* what, const void* caller) {
    if (!g_running || t_inside || calls != g_calls) return false;
    if (!IsConcerned(way) || !IsConcerned(calls, caller)) return false;
    const long number = ++g_count;
    const bool strikes = g_kind == Kind::FailOn ? number >= g_at : number == g_at;
    if (!strikes || g_at == 0) return false;
    if (number == g_at) Tell("hit", name, what);
    if (g_kind == Kind::Kill) ::syscall(SYS_kill, ::syscall(SYS_getpid), SIGKILL);
    return true;
}

template <class Function>
Function* Next(const char* name) {
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

int Refused(int reason) {
    errno = g_kind == Kind::Interrupt ? EINTR : reason;
    return -1;
}

// A read or write: fails, is interrupted, or moves half of what it is asked for.
template <class Move>
ssize_t Moved(Calls calls, const char* name, const void* caller, int file, std::size_t size,
              int reason, Move move) {
    std::array<char, 16> number{};
    std::snprintf(number.data(), number.size(), "%d", file);
    const bool half = g_kind == Kind::Short;
    const bool whole = half && size < 2;
    if (whole || !Strikes(calls, Way::Partial, name, number.data(), caller)) return move(size);
    return half ? move(size / 2) : Refused(reason);
}

// ---- Memory ----

// What dlsym() itself asks for while the real functions are looked up.
alignas(16) std::array<char, 65536> g_first_memory;
std::size_t g_first_used = 0;
bool g_resolving = false;

void* FirstMemory(std::size_t size) {
    void* const found = g_first_memory.data() + g_first_used;
    g_first_used += (size + 15) / 16 * 16;
    return g_first_used <= g_first_memory.size() ? found : nullptr;
}

bool IsFirstMemory(const void* memory) {
    return memory >= g_first_memory.data() &&
           memory < g_first_memory.data() + g_first_memory.size();
}

struct Allocator {
    decltype(&::malloc) malloc;
    decltype(&::calloc) calloc;
    decltype(&::realloc) realloc;
    decltype(&::free) free;
    decltype(&::posix_memalign) posix_memalign;
};

// Null while they are looked up.
const Allocator* Real() {
    static Allocator real{};
    if (real.free != nullptr) return &real;
    if (g_resolving) return nullptr;
    g_resolving = true;
    real.malloc = Next<decltype(::malloc)>("malloc");
    real.calloc = Next<decltype(::calloc)>("calloc");
    real.realloc = Next<decltype(::realloc)>("realloc");
    real.posix_memalign = Next<decltype(::posix_memalign)>("posix_memalign");
    real.free = Next<decltype(::free)>("free");
    g_resolving = false;
    return &real;
}

bool IsRefused(const char* name, const void* caller) {
    return Strikes(Calls::Memory, Way::Plain, name, "", caller);
}

void* NoMemory() {
    errno = ENOMEM;
    return nullptr;
}

// `new` of the library that comes next: a sanitizer's, or the one that calls malloc().
template <class... Arguments>
void* New(void* (*next)(Arguments...), const void* caller, Arguments... arguments) {
    if (IsRefused("new", caller)) throw std::bad_alloc();
    const bool former = t_inside;
    t_inside = true;
    void* const made = next(arguments...);
    t_inside = former;
    return made;
}

// ---- Start and end ----

template <class Value>
Value Chosen(const char* variable, std::initializer_list<std::pair<const char*, Value>> words,
             Value otherwise) {
    const char* const text = std::getenv(variable);
    for (const auto& [word, value] : words) {
        if (text != nullptr && std::strcmp(text, word) == 0) return value;
    }
    return otherwise;
}

using Main = int (*)(int, char**, char**);
Main g_main = nullptr;

int CountedMain(int count, char** values, char** environment) {
    g_calls = Chosen<Calls>(
        "FAULT_CALLS",
        {{"file", Calls::File}, {"memory", Calls::Memory}, {"network", Calls::Network}},
        Calls::None);
    g_kind = Chosen<Kind>("FAULT_KIND",
                          {{"fail", Kind::Fail},
                           {"fail-on", Kind::FailOn},
                           {"short", Kind::Short},
                           {"interrupt", Kind::Interrupt},
                           {"kill", Kind::Kill}},
                          Kind::Fail);
    const char* const at = std::getenv("FAULT_AT");
    if (at != nullptr) g_at = std::atol(at);
    const char* const report = std::getenv("FAULT_REPORT");
    if (report != nullptr) {
        constexpr int kFlags = O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC;
        g_report = static_cast<int>(::syscall(SYS_open, report, kFlags, 0600));
    }
    ::dl_iterate_phdr(NoteModule, nullptr);
    g_running = true;
    const int status = g_main(count, values, environment);
    g_running = false;
    std::array<char, 32> number{};
    std::snprintf(number.data(), number.size(), "%ld", g_count.load());
    Tell("counted", number.data(), "");
    return status;
}

mode_t ModeOf(int flags, va_list arguments) {
    return (flags & (O_CREAT | __O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
}

template <class Open>
int Opened(Open* open, const char* name, const void* caller, const char* path, int flags,
           mode_t mode) {
    if (Strikes(Calls::File, Way::Interruptible, name, path, caller)) return Refused(EMFILE);
    return open(path, flags, mode);
}

}  // namespace

#define CALLER __builtin_return_address(0)

// A call with a result of -1 and a reason. What it works on is told with the report.
#define FAULTY(CALLS, WAY, RESULT, NAME, PARAMETERS, ARGUMENTS, WHAT, REASON)             \
    RESULT NAME PARAMETERS {                                                              \
        static auto* const next = Next<RESULT PARAMETERS>(#NAME);                         \
        if (Strikes(Calls::CALLS, Way::WAY, #NAME, WHAT, CALLER)) return Refused(REASON); \
        return next ARGUMENTS;                                                            \
    }

// The same for a read or write, with where its size stands among its arguments.
#define MOVING(CALLS, NAME, PARAMETERS, FILE, SIZE, REASON, ARGUMENTS)  \
    ssize_t NAME PARAMETERS {                                           \
        static auto* const next = Next<ssize_t PARAMETERS>(#NAME);      \
        return Moved(Calls::CALLS, #NAME, CALLER, FILE, SIZE, REASON,   \
                     [&](std::size_t part) { return next ARGUMENTS; }); \
    }

extern "C" {

// NOLINTNEXTLINE(bugprone-reserved-identifier): the C library's own name for it
int __libc_start_main(Main main, int count, char** values, void (*init)(), void (*fini)(),
                      void (*loader_fini)(), void* stack_end) {
    g_main = main;
    return Next<decltype(__libc_start_main)>("__libc_start_main")(CountedMain, count, values, init,
                                                                  fini, loader_fini, stack_end);
}

int open(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = ModeOf(flags, arguments);
    va_end(arguments);
    static auto* const next = Next<int(const char*, int, ...)>("open");
    return Opened(next, "open", CALLER, path, flags, mode);
}

int open64(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = ModeOf(flags, arguments);
    va_end(arguments);
    static auto* const next = Next<int(const char*, int, ...)>("open64");
    return Opened(next, "open", CALLER, path, flags, mode);
}

int openat(int folder, const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = ModeOf(flags, arguments);
    va_end(arguments);
    static auto* const next = Next<int(int, const char*, int, ...)>("openat");
    if (Strikes(Calls::File, Way::Interruptible, "openat", path, CALLER)) return Refused(EMFILE);
    return next(folder, path, flags, mode);
}

FILE* fopen(const char* path, const char* mode) {
    static auto* const next = Next<decltype(fopen)>("fopen");
    if (!Strikes(Calls::File, Way::Plain, "fopen", path, CALLER)) return next(path, mode);
    Refused(EMFILE);
    return nullptr;
}

DIR* opendir(const char* path) {
    static auto* const next = Next<decltype(opendir)>("opendir");
    if (!Strikes(Calls::File, Way::Plain, "opendir", path, CALLER)) return next(path);
    Refused(EMFILE);
    return nullptr;
}

dirent* readdir(DIR* folder) {
    static auto* const next = Next<decltype(readdir)>("readdir");
    if (!Strikes(Calls::File, Way::Plain, "readdir", "", CALLER)) return next(folder);
    Refused(EIO);
    return nullptr;
}

// A descriptor is closed whatever close() says.
int close(int file) {
    static auto* const next = Next<decltype(close)>("close");
    const bool strikes = Strikes(Calls::File, Way::Interruptible, "close", "", CALLER);
    const int result = next(file);
    return strikes ? Refused(EIO) : result;
}

MOVING(File, read, (int file, void* bytes, std::size_t size), file, size, EIO, (file, bytes, part))
MOVING(File, write, (int file, const void* bytes, std::size_t size), file, size, ENOSPC,
       (file, bytes, part))
MOVING(File, pread, (int file, void* bytes, std::size_t size, off_t at), file, size, EIO,
       (file, bytes, part, at))
MOVING(File, pread64, (int file, void* bytes, std::size_t size, off_t at), file, size, EIO,
       (file, bytes, part, at))
MOVING(File, pwrite, (int file, const void* bytes, std::size_t size, off_t at), file, size, ENOSPC,
       (file, bytes, part, at))
MOVING(File, pwrite64, (int file, const void* bytes, std::size_t size, off_t at), file, size,
       ENOSPC, (file, bytes, part, at))
MOVING(File, sendfile, (int out, int in, off_t* at, std::size_t size), out, size, EIO,
       (out, in, at, part))
MOVING(File, copy_file_range,
       (int in, off_t* in_at, int out, off_t* out_at, std::size_t size, unsigned flags), out, size,
       EIO, (in, in_at, out, out_at, part, flags))

FAULTY(File, Interruptible, int, ftruncate, (int file, off_t size), (file, size), "", EIO)
FAULTY(File, Interruptible, int, ftruncate64, (int file, off_t size), (file, size), "", EIO)
FAULTY(File, Interruptible, int, fsync, (int file), (file), "", EIO)
FAULTY(File, Interruptible, int, fdatasync, (int file), (file), "", EIO)
FAULTY(File, Plain, off_t, lseek, (int file, off_t at, int whence), (file, at, whence), "", EINVAL)
FAULTY(File, Plain, off_t, lseek64, (int file, off_t at, int whence), (file, at, whence), "",
       EINVAL)
FAULTY(File, Plain, int, flock, (int file, int how), (file, how), "", ENOLCK)
FAULTY(File, Plain, int, fchmod, (int file, mode_t mode), (file, mode), "", EPERM)
FAULTY(File, Plain, int, fchown, (int file, uid_t user, gid_t group), (file, user, group), "",
       EPERM)
FAULTY(File, Plain, int, futimens, (int file, const timespec* times), (file, times), "", EPERM)
FAULTY(File, Plain, int, rename, (const char* from, const char* to), (from, to), from, EACCES)
FAULTY(File, Plain, int, link, (const char* from, const char* to), (from, to), from, EACCES)
FAULTY(File, Plain, int, symlink, (const char* to, const char* path), (to, path), path, EACCES)
FAULTY(File, Plain, ssize_t, readlink, (const char* path, char* text, std::size_t size),
       (path, text, size), path, EIO)
FAULTY(File, Plain, int, unlink, (const char* path), (path), path, EACCES)
FAULTY(File, Plain, int, unlinkat, (int folder, const char* path, int flags), (folder, path, flags),
       path, EACCES)
FAULTY(File, Plain, int, remove, (const char* path), (path), path, EACCES)
FAULTY(File, Plain, int, rmdir, (const char* path), (path), path, EACCES)
FAULTY(File, Plain, int, mkdir, (const char* path, mode_t mode), (path, mode), path, EACCES)
FAULTY(File, Plain, int, mkstemp, (char* path), (path), path, EMFILE)
FAULTY(File, Plain, int, mkstemp64, (char* path), (path), path, EMFILE)
FAULTY(File, Plain, int, access, (const char* path, int how), (path, how), path, EACCES)
FAULTY(File, Plain, int, stat, (const char* path, struct stat* status), (path, status), path,
       EACCES)
FAULTY(File, Plain, int, stat64, (const char* path, struct stat64* status), (path, status), path,
       EACCES)
FAULTY(File, Plain, int, lstat, (const char* path, struct stat* status), (path, status), path,
       EACCES)
FAULTY(File, Plain, int, lstat64, (const char* path, struct stat64* status), (path, status), path,
       EACCES)
FAULTY(File, Plain, int, fstat, (int file, struct stat* status), (file, status), "", EIO)
FAULTY(File, Plain, int, fstat64, (int file, struct stat64* status), (file, status), "", EIO)
FAULTY(File, Plain, int, fstatat, (int folder, const char* path, struct stat* status, int flags),
       (folder, path, status, flags), path, EACCES)
FAULTY(File, Plain, int, statx,
       (int folder, const char* path, int flags, unsigned mask, struct statx* status),
       (folder, path, flags, mask, status), path, EACCES)

MOVING(Network, send, (int socket, const void* bytes, std::size_t size, int flags), socket, size,
       ECONNRESET, (socket, bytes, part, flags))
MOVING(Network, recv, (int socket, void* bytes, std::size_t size, int flags), socket, size,
       ECONNRESET, (socket, bytes, part, flags))
FAULTY(Network, Plain, int, socket, (int domain, int type, int protocol), (domain, type, protocol),
       "", EMFILE)
FAULTY(Network, Interruptible, int, connect, (int socket, const sockaddr* address, socklen_t size),
       (socket, address, size), "", ECONNREFUSED)
FAULTY(Network, Interruptible, int, poll, (pollfd * files, nfds_t count, int milliseconds),
       (files, count, milliseconds), "", ENOMEM)
FAULTY(Network, Plain, int, getsockopt,
       (int socket, int level, int name, void* value, socklen_t* size),
       (socket, level, name, value, size), "", EBADF)
FAULTY(Network, Plain, int, setsockopt,
       (int socket, int level, int name, const void* value, socklen_t size),
       (socket, level, name, value, size), "", EBADF)
FAULTY(Network, Plain, int, getpeername, (int socket, sockaddr* address, socklen_t* size),
       (socket, address, size), "", EBADF)
FAULTY(Network, Plain, int, getsockname, (int socket, sockaddr* address, socklen_t* size),
       (socket, address, size), "", EBADF)

void* malloc(std::size_t size) {
    if (IsRefused("malloc", CALLER)) return NoMemory();
    return Real() != nullptr ? Real()->malloc(size) : FirstMemory(size);
}

void* calloc(std::size_t count, std::size_t size) {
    if (IsRefused("calloc", CALLER)) return NoMemory();
    return Real() != nullptr ? Real()->calloc(count, size) : FirstMemory(count * size);
}

void* realloc(void* memory, std::size_t size) {
    if (IsRefused("realloc", CALLER)) return NoMemory();
    return Real()->realloc(memory, size);
}

int posix_memalign(void** memory, std::size_t alignment, std::size_t size) {
    if (IsRefused("posix_memalign", CALLER)) return ENOMEM;
    return Real()->posix_memalign(memory, alignment, size);
}

void free(void* memory) {
    if (!IsFirstMemory(memory) && Real() != nullptr) Real()->free(memory);
}
}

void* operator new(std::size_t size) {
    static auto* const next = Next<void*(std::size_t)>("_Znwm");
    return New(next, CALLER, size);
}

void* operator new[](std::size_t size) {
    static auto* const next = Next<void*(std::size_t)>("_Znam");
    return New(next, CALLER, size);
}
