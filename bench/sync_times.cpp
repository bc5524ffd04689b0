// Measures the syncs of the program that it is preloaded into (LD_PRELOAD). When the program ends,
// writes their number, their time by the clock and their CPU time (seconds) in one line into the
// file that MESHRAKE_SYNC_TIMES names.

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

double secondsOf(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + 1.0e-9 * static_cast<double>(time.tv_nsec);
}

struct SyncTimes {
    long calls = 0;
    double elapsed = 0, cpu = 0;

    ~SyncTimes() {
        const char* path = std::getenv("MESHRAKE_SYNC_TIMES");
        std::FILE* file = path ? std::fopen(path, "w") : nullptr;
        if (!file) return;
        std::fprintf(file, "%ld %.4f %.4f\n", calls, elapsed, cpu);
        std::fclose(file);
    }
};

SyncTimes times;

} // namespace

// In place of the function of the C library.
extern "C" int fdatasync(int descriptor) {
    const double elapsed = secondsOf(CLOCK_MONOTONIC), cpu = secondsOf(CLOCK_THREAD_CPUTIME_ID);
    const auto result = syscall(SYS_fdatasync, descriptor);
    times.elapsed += secondsOf(CLOCK_MONOTONIC) - elapsed;
    times.cpu += secondsOf(CLOCK_THREAD_CPUTIME_ID) - cpu;
    ++times.calls;
    return static_cast<int>(result);
}
