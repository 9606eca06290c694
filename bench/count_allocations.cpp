// Counts the allocations of a program that it is preloaded into:
//
//   LD_PRELOAD=.../libbench_count_allocations.so program
//
// At the program's end one line on standard error tells them: those of operator new, which in our
// program are its own, and those of the C functions, which are mostly of database drivers and of
// the C library. An allocation is counted once.
#include <malloc.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <new>

// The C library's own functions, under the names that cannot be replaced.
// NOLINTBEGIN(bugprone-reserved-identifier): they are the library's names
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
}
// NOLINTEND(bugprone-reserved-identifier)

namespace {

std::atomic<unsigned long> new_calls{0};
std::atomic<unsigned long> c_calls{0};

void* Count(void* memory) {
    c_calls.fetch_add(1, std::memory_order_relaxed);
    return memory;
}

void* CountNew(void* memory) {
    if (memory == nullptr) throw std::bad_alloc();
    new_calls.fetch_add(1, std::memory_order_relaxed);
    return memory;
}

[[gnu::destructor]] void Report() {
    char line[96];
    const int length = std::snprintf(line, sizeof line, "allocations: %lu new, %lu malloc\n",
                                     new_calls.load(), c_calls.load());
    if (::write(STDERR_FILENO, line, static_cast<std::size_t>(length)) < 0) return;
}

}  // namespace

extern "C" {
void* malloc(std::size_t size) { return Count(__libc_malloc(size)); }
void* calloc(std::size_t count, std::size_t size) { return Count(__libc_calloc(count, size)); }
void* realloc(void* memory, std::size_t size) { return Count(__libc_realloc(memory, size)); }
void* memalign(std::size_t alignment, std::size_t size) {
    return Count(__libc_memalign(alignment, size));
}
void* aligned_alloc(std::size_t alignment, std::size_t size) {
    return Count(__libc_memalign(alignment, size));
}
int posix_memalign(void** memory, std::size_t alignment, std::size_t size) {
    *memory = Count(__libc_memalign(alignment, size));
    return *memory == nullptr ? ENOMEM : 0;
}
}

// The array and no-throw forms of the C++ library end in this one; the aligned ones in
// aligned_alloc, and their memory, like this, goes back through free.
void* operator new(std::size_t size) { return CountNew(__libc_malloc(size == 0 ? 1 : size)); }
