// Runs a program in a folder, discards its standard output and prints one line: elapsed time, CPU
// time in user and in system mode (all in seconds), and peak memory (KiB).
//
//     run_measured FOLDER PROGRAM [ARGUMENT]...
//
// The status is that of the program.

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

double seconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) + 1.0e-6 * static_cast<double>(time.tv_usec);
}

[[noreturn]] void execute(const char* folder, char** command) {
    const int null = open("/dev/null", O_WRONLY);
    if (null >= 0 && dup2(null, 1) >= 0 && chdir(folder) == 0) execvp(command[0], command);
    std::perror(command[0]);
    _exit(127);
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fprintf(stderr, "usage: run_measured FOLDER PROGRAM [ARGUMENT]...\n");
        return 2;
    }
    const auto begin = std::chrono::steady_clock::now();
    const pid_t child = fork();
    if (child == 0) execute(argv[1], argv + 2);
    int status = 0;
    rusage usage{};
    if (child < 0 || wait4(child, &status, 0, &usage) != child) {
        std::perror("run_measured");
        return 1;
    }
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - begin;
    std::printf("%.4f %.4f %.4f %ld\n", elapsed.count(), seconds(usage.ru_utime),
                seconds(usage.ru_stime), usage.ru_maxrss);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1;
}
