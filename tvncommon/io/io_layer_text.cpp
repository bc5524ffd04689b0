#include "tvncommon/io/io_layer.hpp"

#include "tvncommon/io/io_layer_state.hpp"
#include "tvncommon/io/system_calls.hpp"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace io_layer {

namespace {

using system_calls::restart;
using system_calls::table;

constexpr std::size_t writeBufferSize = 32768;
// A file below 8 MiB is written without the extra calls: the reservation, and the truncation at its
// close. A step of 64 MiB is one call for 64 blocks of a mebibyte.
constexpr std::int64_t preallocateFrom = 8388608;
constexpr std::int64_t preallocationStep = 67108864;

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

// True for a character that could change the state of a terminal, which texts from input files may
// have. Line feeds and tabs are layout.
bool isControl(char c) {
    return (c >= 0 && c < ' ' && c != '\n' && c != '\t') || c == '\x7f';
}

} // namespace

int flushPending(Connection& c) {
    const int status = writeAll(c, c.pending.data(), c.pending.size());
    c.pending.clear();
    return status;
}

std::ptrdiff_t readSome(const Connection& c, char* into, std::int64_t size, std::int64_t position) {
    const std::int64_t available = std::min(size, c.size - position);
    if (available <= 0) return 0;
    for (;;) {
        const std::ptrdiff_t n =
            table.read(c.descriptor, into, static_cast<std::size_t>(available));
        if (n == 0 && c.size != unbounded) return -1; // the file is shorter than at the open
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
        const std::size_t kept = std::min(n, maximumLineBytes - line.size());
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
    Connection* c = find(unit);
    if (!c) return 0;
    completeInfo(*c);
    return std::max<std::int64_t>(c->size - c->position, 0);
}

} // namespace io_layer
