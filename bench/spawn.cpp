// spawn RUNS FILE PROGRAM [ARGUMENT...]: runs a program RUNS times, discards its output, and prints
// one line per run: wall time in nanoseconds, processor time in microseconds (user and system),
// peak memory in KiB, exit status. FILE is the output file of the program. It is removed before
// each run, because a file system may write a replaced file to the disk immediately, which takes
// longer than the program itself.
//
// There are two reasons why bench/run does not do this in Python. The kernel counts the memory of
// the starting process towards the program's peak. The starting process must therefore be smaller
// than the measured program, so it is linked statically. And starting a process from Python takes
// longer than the programs need for ten lines.

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>

extern char** environ;

int main(int argc, char** argv) {
    if (argc < 4) {
        std::fputs("usage: spawn RUNS FILE PROGRAM [ARGUMENT...]\n", stderr);
        return 1;
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, 1, 2);
    for (int run = std::atoi(argv[1]); run > 0; --run) {
        std::remove(argv[2]);
        const auto start = std::chrono::steady_clock::now();
        pid_t child = 0;
        if (posix_spawnp(&child, argv[3], &actions, nullptr, argv + 3, environ) != 0) {
            std::fprintf(stderr, "spawn: cannot start %s\n", argv[3]);
            return 1;
        }
        int status = 0;
        rusage usage{};
        if (wait4(child, &status, 0, &usage) != child) {
            return 1;
        }
        const auto wall = std::chrono::steady_clock::now() - start;
        const auto nanoseconds = std::chrono::duration_cast<std::chrono::nanoseconds>(wall).count();
        const auto seconds = usage.ru_utime.tv_sec + usage.ru_stime.tv_sec;
        const auto microseconds = usage.ru_utime.tv_usec + usage.ru_stime.tv_usec;
        std::printf("%lld %lld %ld %d\n", static_cast<long long>(nanoseconds),
                    static_cast<long long>(seconds) * 1000000 + microseconds, usage.ru_maxrss,
                    WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status));
    }
    return 0;
}
