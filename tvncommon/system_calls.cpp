#include "tvncommon/system_calls.hpp"

#include <cerrno>
#include <csignal>
#include <ctime>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace system_calls {

namespace {

int openFile(const char* path, OpenMode mode) {
    if (mode == OpenMode::replace)
        return ::open(path, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    // Without O_NONBLOCK the open of a pipe that nobody writes to would never return.
    return ::open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
}

std::int64_t seekFile(int descriptor, std::int64_t position) {
    return ::lseek(descriptor, static_cast<off_t>(position), SEEK_SET);
}

int factsOf(int descriptor, FileFacts& facts) {
    struct stat buffer {};
    if (::fstat(descriptor, &buffer) != 0) return -1;
    facts.size = buffer.st_size;
    facts.kind = S_ISREG(buffer.st_mode)   ? FileKind::regular
                 : S_ISDIR(buffer.st_mode) ? FileKind::folder
                                           : FileKind::other;
    return 0;
}

int existsFile(const char* path) {
    struct stat buffer {};
    return ::stat(path, &buffer);
}

} // namespace

Table systemTable() {
    return {openFile, ::read, ::write, seekFile, ::close, factsOf, existsFile};
}

Table table = systemTable();

void ignoreWriteSignals() {
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

LocalTime localTime() {
    const std::time_t now = std::time(nullptr);
    std::tm t{};
    ::localtime_r(&now, &t);
    return {t.tm_year + 1900,
            t.tm_mon + 1,
            t.tm_mday,
            t.tm_hour,
            t.tm_min,
            t.tm_sec,
            static_cast<int>(t.tm_gmtoff / 60)};
}

} // namespace system_calls
