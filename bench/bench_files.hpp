#pragma once

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <unistd.h>

// Files of the benchmarks, in the folder for temporary files. Each benchmark removes its own.
namespace bench_files {

// Returns a path that is unique to the process.
inline std::string path(const std::string& name) {
    const char* folder = std::getenv("TMPDIR");
    return std::string(folder ? folder : "/tmp") + "/meshrake_bench." + std::to_string(getpid()) +
           "." + name;
}

[[noreturn]] inline void fail(const std::string& name) {
    std::perror(name.c_str());
    std::exit(1);
}

inline int open(const std::string& name, int flags) {
    const int descriptor = ::open(name.c_str(), flags | O_CLOEXEC, 0666);
    if (descriptor < 0) fail(name);
    return descriptor;
}

using Clock = std::chrono::steady_clock;

inline double secondsSince(Clock::time_point begin) {
    return std::chrono::duration<double>(Clock::now() - begin).count();
}

} // namespace bench_files
