#include "tvncommon/io/io_layer.hpp"

#include "tvncommon/io/io_layer_state.hpp"
#include "tvncommon/io/system_calls.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <map>

namespace io_layer {

namespace {

using system_calls::OpenMode;
using system_calls::restart;
using system_calls::table;

constexpr std::size_t writeBufferSize = 32768;
// A file that stays below 8 MiB is spared the extra calls: the reservation, and the truncation at
// its close. A step of 64 MiB is one call for 512 blocks of text.
constexpr std::int64_t preallocateFrom = 8388608;
constexpr std::int64_t preallocationStep = 67108864;
constexpr std::size_t longestName = 300;
// Some file systems give a file another number at each look, so that no attempt would succeed.
constexpr int mostAttempts = 100;

struct State {
    std::array<bool, lastUnit - firstUnit + 1> taken{};
    std::map<int, Connection> connections;
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

// Adds a connection without a file. This comes before the open, because a failed allocation after
// the open would lose the descriptor and with it a lock.
Connection& connect(int unit, const std::string& path, Form form, Flush flushing) {
    Connection c;
    c.path = path;
    c.form = form;
    c.flushing = flushing;
    return state.connections[unit] = std::move(c);
}

int openFile(Connection& c, OpenMode mode) {
    c.descriptor = restart([&] { return table.open(c.path.c_str(), mode); });
    if (c.descriptor < 0) return statusOfOpen(errno);
    c.writing = mode != OpenMode::read;
    system_calls::FileInfo info;
    // Only a regular file is read: another one may never end. A device or pipe can be written.
    const bool usable = table.fileInfo(c.descriptor, info) == 0 &&
                        (c.writing || info.kind == system_calls::FileKind::regular);
    if (!usable) {
        table.close(c.descriptor);
        return openFailed;
    }
    c.size = info.size;
    c.regular = info.kind == system_calls::FileKind::regular;
    c.device = info.device;
    c.number = info.number;
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

// Sets `same` to whether the open file is still the one of this name. While the call waited for the
// lock, another process may have removed or replaced the file.
int compareIdentity(const std::string& path, const system_calls::FileInfo& info, bool& same) {
    system_calls::FileInfo named;
    const bool found = table.fileInfoOfName(path.c_str(), named) == 0;
    same = found && named.device == info.device && named.number == info.number;
    return found || errno == ENOENT ? ok : statusOfOpen(errno);
}

// An input file may also have the name of the output file, through a link.
bool isInput(const system_calls::FileInfo& info) {
    return std::any_of(state.connections.begin(), state.connections.end(), [&](const auto& entry) {
        const Connection& c = entry.second;
        return c.regular && !c.writing && c.device == info.device && c.number == info.number;
    });
}

// One attempt to lock and empty the file of this name; `done` if it succeeded or the file needs no
// lock. The last attempt accepts a file whose identity changed. A file that is open for reading is
// not emptied.
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

// The contents must be on the disk before the rename. A device has no sync.
int sync(int descriptor) {
    const bool synced = restart([=] { return table.sync(descriptor); }) == 0;
    return synced || errno == EINVAL || errno == ENOSYS ? ok : writeFailed;
}

int writeAll(Connection& c, const char* from, std::size_t size) {
    while (size > 0) {
        const std::ptrdiff_t n = table.write(c.descriptor, from, size);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return writeFailed;
        from += n;
        size -= static_cast<std::size_t>(n);
        c.written += n;
    }
    return ok;
}

// Reserves disk space in large steps, which costs the file system less than a search at every
// block. After a refused step no more is reserved; if the disk is full, the writes fail.
void preallocate(Connection& c, std::size_t size) {
    const std::int64_t end = c.written + static_cast<std::int64_t>(size);
    if (!c.regular || c.written < preallocateFrom || end <= c.preallocatedEnd) return;
    const std::int64_t begin = std::max(c.written, c.preallocatedEnd);
    const bool reserved =
        restart([&] { return table.reserve(c.descriptor, begin, preallocationStep); }) == 0;
    c.preallocatedEnd = reserved ? begin + preallocationStep : unbounded;
}

// Control characters in input texts could change the state of a terminal. Line feeds and tabs are
// layout.
bool isControl(char c) {
    return (c >= 0 && c < ' ' && c != '\n' && c != '\t') || c == '\x7f';
}

int flushPending(Connection& c) {
    const int status = writeAll(c, c.pending.data(), c.pending.size());
    c.pending.clear();
    return status;
}

} // namespace

Connection* find(int unit) {
    const auto it = state.connections.find(unit);
    return it == state.connections.end() ? nullptr : &it->second;
}

std::ptrdiff_t readSome(const Connection& c, char* into, std::int64_t size, std::int64_t position) {
    const std::int64_t wanted = std::min(size, c.size - position);
    if (wanted <= 0) return 0;
    for (;;) {
        const std::ptrdiff_t n = table.read(c.descriptor, into, static_cast<std::size_t>(wanted));
        if (n == 0 && c.size != unbounded) return -1; // the file has been cut since the open
        if (n >= 0 || errno != EINTR) return n;
    }
}

int fillBuffer(Connection& c, std::int64_t position) {
    if (c.readBuffer.empty()) c.readBuffer.resize(readBufferSize);
    c.readBegin = c.readEnd = 0;
    const std::ptrdiff_t n = readSome(c, c.readBuffer.data(), readBufferSize, position);
    if (n < 0) return readFailed;
    c.readEnd = static_cast<std::size_t>(n);
    return ok;
}

// The system would end the name at a NUL and open another file. So would a name that is cut at the
// length of the simulator's texts.
bool canBeName(const std::string& path) {
    return path.size() <= longestName && path.find('\0') == std::string::npos;
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
        std::string name = std::move(c.path); // a copy could fail in a run without memory
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
        status = openLocked(*find(unit), wait, attempt == mostAttempts, done);
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

int readLine(int unit, std::string& line, LongLine longLine) {
    line.clear();
    Connection* c = find(unit);
    if (!c) return readFailed;
    bool any = false;
    for (;;) {
        if (c->readBegin == c->readEnd) {
            if (fillBuffer(*c, c->position) != ok) return readFailed;
            if (c->readEnd == 0) break;
        }
        any = true;
        const char* begin = c->readBuffer.data() + c->readBegin;
        const std::size_t available = c->readEnd - c->readBegin;
        const void* lineFeed = std::memchr(begin, '\n', available);
        const std::size_t n =
            lineFeed ? static_cast<std::size_t>(static_cast<const char*>(lineFeed) - begin)
                     : available;
        const std::size_t kept = std::min(n, longestLine - line.size());
        if (kept < n && (longLine == LongLine::refused || c->size == unbounded)) return invalidData;
        line.append(begin, kept);
        c->readBegin += n + (lineFeed ? 1 : 0);
        c->position += static_cast<std::int64_t>(n + (lineFeed ? 1 : 0));
        if (lineFeed) break;
    }
    if (!line.empty() && line.back() == '\r') line.pop_back();
    return any ? ok : endOfFile;
}

int writeText(int unit, std::string_view text) {
    Connection* c = find(unit);
    if (!c || !c->writing) return writeFailed;
    const auto begin = static_cast<std::ptrdiff_t>(c->pending.size());
    c->pending.append(text);
    if (unit < firstUnit)
        std::replace_if(c->pending.begin() + begin, c->pending.end(), isControl, '?');
    return c->pending.size() >= writeBufferSize ? flushPending(*c) : ok;
}

int writeLine(int unit, std::string_view line) {
    int status = writeText(unit, line);
    if (status == ok) status = writeText(unit, "\n");
    if (status != ok) return status;
    Connection& c = *find(unit);
    return c.flushing == Flush::everyLine ? flushPending(c) : ok;
}

int writeBlock(int unit, const char* block, std::size_t size) {
    Connection* c = find(unit);
    if (!c || !c->writing) return writeFailed;
    // A block without control characters needs no memory: the allocation banner relies on that.
    const bool cleaned = unit < firstUnit && std::any_of(block, block + size, isControl);
    int status = cleaned ? writeText(unit, {block, size}) : ok;
    if (status == ok) status = flushPending(*c);
    if (status != ok || cleaned) return status;
    preallocate(*c, size);
    return writeAll(*c, block, size);
}

int flush(int unit) {
    Connection* c = find(unit);
    if (!c || !c->writing) return writeFailed;
    return flushPending(*c);
}

int rewind(int unit) {
    Connection* c = find(unit);
    if (!c) return readFailed;
    const int status = c->writing ? flushPending(*c) : ok;
    if (status != ok) return status;
    if (table.seek(c->descriptor, 0) < 0) return c->writing ? writeFailed : readFailed;
    c->readBegin = c->readEnd = 0;
    c->position = 0;
    return ok;
}

std::int64_t bytesLeft(int unit) {
    const Connection* c = find(unit);
    return c ? std::max<std::int64_t>(c->size - c->position, 0) : 0;
}

} // namespace io_layer
