#include "tvncommon/io/io_layer.hpp"

#include "tvncommon/io/io_layer_state.hpp"
#include "tvncommon/io/system_calls.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <map>

namespace io_layer {

namespace {

using system_calls::OpenMode;
using system_calls::restart;
using system_calls::table;

constexpr std::size_t maximumNameLength = 300; // of the simulator's texts
// Some file systems give a file another number at each query, so that no attempt would succeed.
constexpr int maximumAttempts = 100;

struct State {
    std::array<bool, lastUnit - firstUnit + 1> taken{};
    std::map<int, Connection> connections;
    std::vector<char> freeBuffer; // read buffer of a released unit, for the next one
};

Connection fixedStream(int descriptor, const char* path, bool writing) {
    Connection c;
    c.descriptor = descriptor;
    c.path = path;
    c.writing = writing;
    c.flushing = Flush::everyLine;
    c.size = unbounded;
    return c;
}

State freshState() {
    State s;
    s.connections[standardInput] = fixedStream(0, "standard input", false);
    s.connections[screen] = fixedStream(1, "standard output", true);
    s.connections[standardError] = fixedStream(2, "standard error", true);
    return s;
}

State state = freshState();

// Adds a connection without a file. Called before the open, because a failed allocation after the
// open would lose the descriptor and with it a lock.
Connection& connect(int unit, const std::string& path, Form form, Flush flushing) {
    Connection c;
    c.path = path;
    c.form = form;
    c.flushing = flushing;
    return state.connections[unit] = std::move(c);
}

void setInfo(Connection& c, const system_calls::FileInfo& info) {
    c.size = info.size;
    c.regular = info.kind == system_calls::FileKind::regular;
    c.device = info.device;
    c.number = info.number;
}

int openDescriptor(Connection& c, OpenMode mode) {
    c.descriptor = restart([&] { return table.open(c.path.c_str(), mode); });
    if (c.descriptor < 0) return statusOfOpen(errno);
    c.writing = mode != OpenMode::read;
    return ok;
}

int openFile(Connection& c, OpenMode mode) {
    const int status = openDescriptor(c, mode);
    if (status != ok) return status;
    system_calls::FileInfo info;
    // Only a regular file is read, because another one may never end. A device or pipe can be
    // written.
    const bool usable = table.fileInfo(c.descriptor, info) == 0 &&
                        (c.writing || info.kind == system_calls::FileKind::regular);
    if (!usable) {
        table.close(c.descriptor);
        return openFailed;
    }
    setInfo(c, info);
    return ok;
}

int open(int unit, const std::string& path, OpenMode mode, Form form,
         Flush flushing = Flush::inBlocks) {
    if (!canBeName(path)) return invalidPath;
    const int status = openFile(connect(unit, path, form, flushing), mode);
    if (status != ok) state.connections.erase(unit);
    return status;
}

int openForCommit(int unit, const std::string& path, Form form) {
    Connection& c = connect(unit, path, form, Flush::inBlocks);
    const int status = file_replacement::begin(path, file_replacement::InPlace::permitted,
                                               c.replacement, c.descriptor);
    c.writing = status == ok;
    c.regular = !c.replacement.newFile.empty();
    if (status != ok) state.connections.erase(unit);
    return status;
}

int truncate(int descriptor, std::int64_t size) {
    return restart([=] { return table.truncate(descriptor, size); }) == 0 ? ok : writeFailed;
}

int lock(int descriptor, bool wait) {
    if (restart([=] { return table.lock(descriptor, wait); }) == 0) return ok;
    switch (errno) {
    case EWOULDBLOCK:
        return lockedElsewhere;
    case EOPNOTSUPP:
    case ENOSYS:
    case ENOLCK:
    case EINVAL:
        return ok; // a file system without locks
    default:
        return openFailed;
    }
}

// Sets `same` to whether the name is still that of the open file. While the call waited for the
// lock, another process may have removed or replaced the file.
int compareIdentity(const std::string& path, const system_calls::FileInfo& info, bool& same) {
    system_calls::FileInfo named;
    const bool found = table.fileInfoOfName(path.c_str(), named) == 0;
    same = found && named.device == info.device && named.number == info.number;
    return found || errno == ENOENT ? ok : statusOfOpen(errno);
}

// True if the file is open for reading. Through a link an output file can be an input file.
bool isInput(const system_calls::FileInfo& info) {
    return std::any_of(state.connections.begin(), state.connections.end(), [&](auto& entry) {
        Connection& c = entry.second;
        completeInfo(c);
        return c.regular && !c.writing && c.device == info.device && c.number == info.number;
    });
}

// Makes one attempt to lock and empty the file. Sets `done` if it succeeded or the file needs no
// lock. The last attempt accepts a file whose identity changed. A file that is open for reading is
// not emptied: the call fails.
int openLocked(Connection& c, bool wait, bool last, bool& done) {
    system_calls::FileInfo info;
    if (table.fileInfo(c.descriptor, info) != 0) return openFailed;
    done = info.kind != system_calls::FileKind::regular;
    if (done) return ok;
    int status = lock(c.descriptor, wait);
    if (status == ok) status = compareIdentity(c.path, info, done);
    if (status != ok || (!done && !last)) return status;
    if (isInput(info)) return openFailed;
    done = true;
    const bool emptied = table.fileInfo(c.descriptor, info) == 0 &&
                         (info.size == 0 || truncate(c.descriptor, 0) == ok);
    return emptied ? ok : openFailed;
}

// Syncs the contents, which must be on the disk before the rename. A device has no sync.
int sync(int descriptor) {
    const bool synced = restart([=] { return table.sync(descriptor); }) == 0;
    return synced || errno == EINVAL || errno == ENOSYS ? ok : writeFailed;
}

} // namespace

Connection* find(int unit) {
    const auto it = state.connections.find(unit);
    return it == state.connections.end() ? nullptr : &it->second;
}

void completeInfo(Connection& c) {
    if (c.infoKnown) return;
    c.infoKnown = true;
    system_calls::FileInfo info;
    if (table.fileInfo(c.descriptor, info) == 0) setInfo(c, info);
    if (!c.regular) c.size = 0;
}

// The system would end the name at a NUL and open another file. The same happens to a name that is
// cut at the length of the simulator's texts.
bool canBeName(const std::string& path) {
    return path.size() <= maximumNameLength && path.find('\0') == std::string::npos;
}

int statusOfOpen(int error) {
    switch (error) {
    case ENOENT:
        return fileNotFound;
    case EACCES:
    case EPERM:
        return permissionDenied;
    case ENOTDIR:
        return invalidPath;
    case EMFILE:
    case ENFILE:
        return tooManyOpenFiles;
    default:
        return openFailed;
    }
}

void reset() {
    state = freshState();
}

int exists(const std::string& path, bool& found) {
    found = false;
    if (!canBeName(path)) return invalidPath;
    found = table.exists(path.c_str()) == 0;
    return found || errno == ENOENT || errno == ENOTDIR ? ok : statusOfOpen(errno);
}

int takeUnit() {
    for (int unit = firstUnit; unit <= lastUnit; ++unit) {
        bool& taken = state.taken[static_cast<std::size_t>(unit - firstUnit)];
        if (taken) continue;
        taken = true;
        return unit;
    }
    return 0;
}

bool unitTaken(int unit) {
    return state.taken[static_cast<std::size_t>(unit - firstUnit)];
}

int releaseUnit(int unit) {
    state.taken[static_cast<std::size_t>(unit - firstUnit)] = false;
    Connection* c = find(unit);
    if (!c) return ok;
    int status = c->writing ? flushPending(*c) : ok;
    // Frees the reserved space that was not needed; the size of the file does not change.
    if (c->preallocatedEnd > c->written && truncate(c->descriptor, c->written) != ok)
        status = writeFailed;
    file_replacement::discard(c->replacement); // its lock ends with the descriptor
    const bool closed = c->descriptor < 0 || table.close(c->descriptor) == 0;
    if (!closed && c->writing && status == ok) status = writeFailed;
    if (!c->readBuffer.empty()) state.freeBuffer = std::move(c->readBuffer);
    state.connections.erase(unit);
    return status;
}

int commitUnit(int unit) {
    Connection* c = find(unit);
    if (!c) return writeFailed;
    int status = flushPending(*c);
    if (status == ok) status = sync(c->descriptor);
    // The data are on the disk, so a failure of the close that follows loses nothing.
    if (status == ok) status = file_replacement::commit(c->replacement);
    const int released = releaseUnit(unit);
    return status == ok ? released : status;
}

int releaseAll(std::string& path) {
    int first = ok;
    while (!state.connections.empty() && state.connections.rbegin()->first >= firstUnit) {
        auto& [unit, c] = *state.connections.rbegin();
        std::string name = std::move(c.path); // a copy would fail if memory is exhausted
        const int status = releaseUnit(unit);
        if (status == ok || first != ok) continue;
        first = status;
        path = std::move(name);
    }
    state.taken.fill(false);
    return first;
}

std::string pathOf(int unit) {
    const Connection* c = find(unit);
    return c ? c->path : std::string();
}

int openTextRead(int unit, const std::string& path) {
    return open(unit, path, OpenMode::read, Form::formatted);
}

int openTextReplace(int unit, const std::string& path, Flush flushing) {
    return open(unit, path, OpenMode::replace, Form::formatted, flushing);
}

int openRecordsRead(int unit, const std::string& path) {
    return open(unit, path, OpenMode::read, Form::unformatted);
}

int openRecordsReplace(int unit, const std::string& path) {
    return open(unit, path, OpenMode::replace, Form::unformatted);
}

int openRecordsUnchecked(int unit, const std::string& path) {
    if (!canBeName(path)) return invalidPath;
    Connection& c = connect(unit, path, Form::unformatted, Flush::inBlocks);
    c.infoKnown = false;
    c.size = unbounded;
    c.readBuffer = std::move(state.freeBuffer);
    const int status = openDescriptor(c, OpenMode::read);
    if (status != ok) state.connections.erase(unit);
    return status;
}

int openTextForCommit(int unit, const std::string& path) {
    return openForCommit(unit, path, Form::formatted);
}

int openRecordsForCommit(int unit, const std::string& path) {
    return openForCommit(unit, path, Form::unformatted);
}

int openTextLocked(int unit, const std::string& path, Flush flushing, bool wait) {
    for (int attempt = 1;; ++attempt) {
        int status = open(unit, path, OpenMode::write, Form::formatted, flushing);
        if (status != ok) return status;
        bool done = false;
        status = openLocked(*find(unit), wait, attempt == maximumAttempts, done);
        if (status == ok && done) return ok;
        table.close(find(unit)->descriptor);
        state.connections.erase(unit);
        if (status != ok) return status;
    }
}

Form formOf(int unit) {
    const Connection* c = find(unit);
    return c ? c->form : Form::unconnected;
}

} // namespace io_layer
