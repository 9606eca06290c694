// Runs a command and writes what it cost into a file, as one line:
//
//   bench_measure RESULT COMMAND [ARGUMENT...]
//   RESULT: exit status, wall seconds, processor seconds (user and system), peak memory in KiB
//
// A program of its own because the kernel counts a child's peak memory from before it became
// another program: started from a large process, a small one would seem large.
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

double Seconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fprintf(stderr, "usage: bench_measure RESULT COMMAND [ARGUMENT...]\n");
        return EXIT_FAILURE;
    }
    const auto start = std::chrono::steady_clock::now();
    pid_t child = 0;
    const int failure = ::posix_spawnp(&child, argv[2], nullptr, nullptr, argv + 2, environ);
    if (failure != 0) {
        std::fprintf(stderr, "bench_measure: %s: %s\n", argv[2], std::strerror(failure));
        return EXIT_FAILURE;
    }
    int status = 0;
    rusage usage{};
    if (::wait4(child, &status, 0, &usage) != child) return EXIT_FAILURE;
    const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - start;
    const int exit_status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);

    std::FILE* const result = std::fopen(argv[1], "w");
    if (result == nullptr) return EXIT_FAILURE;
    std::fprintf(result, "%d %.6f %.6f %.6f %ld\n", exit_status, wall.count(),
                 Seconds(usage.ru_utime), Seconds(usage.ru_stime), usage.ru_maxrss);
    return std::fclose(result) == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
