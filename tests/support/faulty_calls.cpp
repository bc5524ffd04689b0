#include "tests/support/faulty_calls.hpp"

#include "meshrake/meshrake.hpp"

#include <algorithm>
#include <cerrno>
#include <unistd.h>
#include <utility>

namespace faulty_calls {

namespace {

using system_calls::OpenMode;
using system_calls::Table;

Fault fault;
bool watching = false;        // false while the test itself makes calls
bool interruptedLast = false; // the previous call was interrupted

struct OpenFile {
    std::string path;
    bool writing = false;
};
// By descriptor. An entry that a failed run leaves is replaced when the descriptor is opened again.
std::map<int, OpenFile> openFiles{
    {0, {"standard input"}}, {1, {"standard output"}}, {2, {"standard error"}}};
std::string answer; // rest of the answer to the prompt

OpenFile target(const char* path, OpenMode mode) {
    return {path, mode != OpenMode::read};
}
OpenFile target(const char* path, auto...) {
    return {path, true};
}
OpenFile target(int descriptor, auto...) {
    return openFiles[descriptor];
}
OpenFile target(std::size_t) {
    return {};
}

void shorten(int, auto*, std::size_t& size, auto...) {
    if (fault.way == Way::shorten) size = std::min(size, fault.maximumBytes);
}
void shorten(int, void*, std::size_t& first, void*, std::size_t& second) {
    if (fault.way != Way::shorten) return;
    first = std::min(first, fault.maximumBytes);
    second = 0;
}
void shorten(...) {}

// Does the part of a write before the process is killed. The system stops at the end of a page.
void doPart(int d, const void* from, std::size_t size) {
    system_calls::systemTable().write(d, from, size / 2);
}
void doPart(int d, const void* from, std::size_t size, std::int64_t to) {
    const std::int64_t end = (to + static_cast<std::int64_t>(size) / 2) / 4096 * 4096;
    if (end > to)
        system_calls::systemTable().writeAt(d, from, static_cast<std::size_t>(end - to), to);
}
void doPart(...) {}

// True if the call fails, or if the process is killed at it.
bool isFaulty(const Kind& kind, const OpenFile& file) {
    if (fault.way == Way::interrupt) {
        errno = EINTR;
        return interruptedLast = kind.restarts && !interruptedLast;
    }
    errno = fault.error;
    const bool grows = kind.effect == Effect::growth;
    if (!fault.met && grows && file.path == echoFile) fault.echoBegun = true;
    if (fault.way == Way::lasting && file.path.starts_with("standard ")) return false;
    if (file.path.find(fault.only) == std::string::npos) return false;
    if (fault.met)
        return fault.way == Way::lasting &&
               (grows ? fault.kind->effect == Effect::growth : fault.kind == &kind);
    const bool fits = fault.way == Way::kill
                          ? kind.effect != Effect::none && file.writing && file.path != echoFile
                          : fault.kind == &kind;
    if (!fits || --fault.countdown != 0) return false;
    fault.met = true;
    fault.path = file.path;
    return true;
}

Table watchedTable() {
    static const Table real = system_calls::systemTable();
    Table table = runs::keepingTable();
    table.open = [](const char* path, OpenMode mode) {
        const int descriptor = real.open(path, mode);
        if (descriptor >= 0) openFiles[descriptor] = {path, mode != OpenMode::read};
        return descriptor;
    };
    table.close = [](int descriptor) {
        openFiles.erase(descriptor);
        return real.close(descriptor);
    };
    table.read = [](int descriptor, void* into, std::size_t size) {
        if (descriptor != 0) return real.read(descriptor, into, size);
        size = answer.copy(static_cast<char*>(into), size);
        answer.erase(0, size);
        return static_cast<std::ptrdiff_t>(size);
    };
    return table;
}
const Table watched = watchedTable();

template<auto entry>
struct Entry;
template<class Result, class... Arguments, Result (*Table::*entry)(Arguments...)>
struct Entry<entry> {
    static inline const Kind* kind;
    static Result call(Arguments... arguments) {
        if (!std::exchange(watching, false)) return (watched.*entry)(arguments...);
        const bool faulty = isFaulty(*kind, target(arguments...));
        if (faulty && fault.way == Way::kill) {
            doPart(arguments...);
            _exit(0);
        }
        Result result{};
        if (!faulty) {
            shorten(arguments...);
            result = (watched.*entry)(arguments...);
        } else if constexpr (!std::is_pointer_v<Result>) {
            // A close that fails has closed the file.
            if constexpr (std::is_same_v<decltype(&Table::close), decltype(entry)>)
                if (entry == &Table::close) watched.close(arguments...);
            result = -1;
            errno = fault.way == Way::interrupt ? EINTR : fault.error;
        }
        watching = true;
        return result;
    }
    static void wrap(Table& table, const Kind& itsKind) {
        kind = &itsKind;
        table.*entry = call;
    }
};

const Effect none = Effect::none, change = Effect::change, growth = Effect::growth;
// clang-format off
const Kind allKinds[] = {
    {"stat", none, false, {EIO, ESTALE, EACCES, ENAMETOOLONG}, Entry<&Table::exists>::wrap},
    {"open", change, true, {EACCES, EMFILE, ENFILE, EISDIR, ELOOP, EIO, ENOSPC, EROFS},
     Entry<&Table::open>::wrap},
    {"fstat", none, false, {EIO, ESTALE}, Entry<&Table::fileInfo>::wrap},
    {"read", none, true, {EIO, ESTALE}, Entry<&Table::read>::wrap},
    {"readv", none, true, {EIO, ESTALE}, Entry<&Table::readBoth>::wrap},
    {"pread", none, true, {EIO, ESTALE}, Entry<&Table::readAt>::wrap},
    {"write", growth, true, {EIO, ENOSPC, EDQUOT, EFBIG, EPIPE}, Entry<&Table::write>::wrap},
    {"pwrite", growth, true, {EIO, ENOSPC, EDQUOT, EFBIG}, Entry<&Table::writeAt>::wrap},
    {"lseek", none, false, {EIO}, Entry<&Table::seek>::wrap},
    {"close", none, false, {EIO, EDQUOT}, Entry<&Table::close>::wrap},
    {"rename", change, false, {EIO, EACCES, ENOSPC}, Entry<&Table::rename>::wrap},
    {"ftruncate", change, true, {EIO, EPERM}, Entry<&Table::truncate>::wrap},
    {"fallocate", growth, true, {ENOSPC, EFBIG, EIO}, Entry<&Table::reserve>::wrap},
    {"sync_file_range", none, true, {EIO, ENOSPC, EINVAL}, Entry<&Table::startSync>::wrap},
    {"fdatasync", none, true, {EIO, ENOSPC, EDQUOT}, Entry<&Table::sync>::wrap},
    {"flock", none, true, {ENOLCK, EIO}, Entry<&Table::lock>::wrap},
    {"unlink", change, false, {EIO, EACCES, EPERM}, Entry<&Table::remove>::wrap},
    {"chmod", change, false, {EPERM, EIO, EROFS}, Entry<&Table::setPermissions>::wrap},
    {"stat (file info)", none, false, {EIO, ESTALE, EACCES}, Entry<&Table::fileInfoOfName>::wrap},
    {"readlink", none, false, {EIO, ELOOP, EACCES}, Entry<&Table::readLink>::wrap},
    {"allocation", none, false, {ENOMEM}, Entry<&Table::allocate>::wrap},
};
// clang-format on

} // namespace

std::span<const Kind> kinds() {
    return allKinds;
}

const Kind* kind(std::string_view name) {
    return std::ranges::find(allKinds, name, &Kind::name);
}

runs::Ran run(const std::vector<const char*>& arguments, Fault& with) {
    fault = with;
    answer = "t\n";
    Table table = watched;
    for (const Kind& kind : allKinds) kind.wrap(table, kind);
    system_calls::table = table;
    const runs::Ran ran = runs::keepStreams([&] {
        watching = true;
        const int status = meshrake_main(static_cast<int>(arguments.size()), arguments.data());
        watching = false;
        return status;
    });
    system_calls::table = system_calls::systemTable();
    with = fault;
    return ran;
}

} // namespace faulty_calls
