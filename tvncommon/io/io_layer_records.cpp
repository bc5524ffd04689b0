#include "tvncommon/io/io_layer_state.hpp"

#include "tvncommon/io/system_calls.hpp"

#include <algorithm>
#include <bit>
#include <cstring>

static_assert(std::endian::native == std::endian::little,
              "the files are little-endian and are read and written without conversion");

namespace io_layer {

namespace {

using system_calls::table;

// Reads many bytes into the caller's array, without the buffer, and returns their number. The same
// system call fills the empty buffer with the following bytes: the end of the record, and often of
// the file.
std::int64_t readLarge(Connection& c, char* into, std::int64_t size, std::int64_t position) {
    if (c.size != unbounded) return readSome(c, into, size, position);
    if (c.readBuffer.empty()) c.readBuffer.resize(readBufferSize);
    const std::int64_t n = system_calls::restart([&] {
        return table.readBoth(c.descriptor, into, static_cast<std::size_t>(size),
                              c.readBuffer.data(), readBufferSize);
    });
    c.readBegin = 0;
    c.readEnd = static_cast<std::size_t>(std::max<std::int64_t>(n - size, 0));
    return std::min(n, size);
}

// Reads `size` bytes, or fewer at the end of the file, and stores their number in `got`.
int readUpTo(Connection& c, char* into, std::int64_t size, std::int64_t& got) {
    got = 0;
    while (got < size) {
        if (c.readBegin < c.readEnd) {
            const auto n = std::min<std::int64_t>(
                size - got, static_cast<std::int64_t>(c.readEnd - c.readBegin));
            std::memcpy(into + got, c.readBuffer.data() + c.readBegin, static_cast<std::size_t>(n));
            c.readBegin += static_cast<std::size_t>(n);
            got += n;
            continue;
        }
        if (size - got < static_cast<std::int64_t>(readBufferSize)) {
            if (fillBuffer(c, c.position + got) != ok) return readFailed;
            if (c.readEnd == 0) break;
            continue;
        }
        const std::int64_t n = readLarge(c, into + got, size - got, c.position + got);
        if (n < 0) return readFailed;
        if (n == 0) break;
        got += n;
    }
    c.position += got;
    return ok;
}

int readExactly(Connection& c, void* into, std::int64_t size) {
    std::int64_t got = 0;
    const int status = readUpTo(c, static_cast<char*>(into), size, got);
    if (status != ok) return status;
    return got == size ? ok : readFailed;
}

int skip(Connection& c, std::int64_t size) {
    const std::int64_t target = c.position + size;
    if (target > c.size) return readFailed;
    if (size <= static_cast<std::int64_t>(c.readEnd - c.readBegin)) {
        c.readBegin += static_cast<std::size_t>(size);
    } else {
        if (table.seek(c.descriptor, target) < 0) return readFailed;
        c.readBegin = c.readEnd = 0;
    }
    c.position = target;
    return ok;
}

int beginSubRecord(Connection& c, bool first) {
    std::int32_t marker = 0;
    std::int64_t got = 0;
    if (readUpTo(c, reinterpret_cast<char*>(&marker), 4, got) != ok) return readFailed;
    if (got == 0 && first) return endOfFile;
    if (got != 4) return readFailed;
    const std::int64_t length = marker;
    c.record.continues = length < 0;
    c.record.subRecordLength = c.record.subRecordLeft = length < 0 ? -length : length;
    return ok;
}

int endSubRecord(Connection& c) {
    if (c.record.subRecordLeft > 0) {
        const int status = skip(c, c.record.subRecordLeft);
        if (status != ok) return status;
    }
    c.record.subRecordLeft = 0;
    std::int32_t marker = 0;
    const int status = readExactly(c, &marker, 4);
    if (status != ok) return status;
    const std::int64_t length = marker;
    return (length < 0 ? -length : length) == c.record.subRecordLength ? ok : readFailed;
}

} // namespace

int beginRecord(int unit) {
    Connection* c = find(unit);
    return c ? beginSubRecord(*c, true) : readFailed;
}

int readInRecord(int unit, void* into, std::int64_t size) {
    Connection& c = *find(unit);
    char* target = static_cast<char*>(into);
    while (size > 0) {
        while (c.record.subRecordLeft == 0) {
            if (!c.record.continues) return readFailed;
            int status = endSubRecord(c);
            if (status == ok) status = beginSubRecord(c, false);
            if (status != ok) return status;
        }
        const std::int64_t n = std::min(size, c.record.subRecordLeft);
        const int status = readExactly(c, target, n);
        if (status != ok) return status;
        c.record.subRecordLeft -= n;
        target += n;
        size -= n;
    }
    return ok;
}

int endRecord(int unit) {
    Connection& c = *find(unit);
    for (;;) {
        const bool continues = c.record.continues;
        int status = endSubRecord(c);
        if (status == ok && continues) status = beginSubRecord(c, false);
        if (status != ok || !continues) return status;
    }
}

int readRecord(int unit, void* into, std::int64_t size) {
    int status = beginRecord(unit);
    if (status == ok) status = readInRecord(unit, into, size);
    if (status == ok) status = endRecord(unit);
    return status;
}

int skipRecord(int unit, std::int64_t& size) {
    size = 0;
    int status = beginRecord(unit);
    while (status == ok) {
        const OpenRecord& record = find(unit)->record;
        const bool continues = record.continues;
        size += record.subRecordLength;
        status = endSubRecord(*find(unit));
        if (status != ok || !continues) return status;
        status = beginSubRecord(*find(unit), false);
    }
    return status;
}

int writeRecord(int unit, const void* payload, std::int64_t size, std::int64_t maximumSubRecord) {
    const char* from = static_cast<const char*>(payload);
    bool first = true;
    do {
        const std::int64_t n = std::min(size, maximumSubRecord);
        const bool continues = size > n;
        const auto leading = static_cast<std::int32_t>(continues ? -n : n);
        const auto trailing = static_cast<std::int32_t>(first ? n : -n);
        int status = writeText(unit, {reinterpret_cast<const char*>(&leading), 4});
        if (status == ok) status = writeBlock(unit, from, static_cast<std::size_t>(n));
        if (status == ok) status = writeText(unit, {reinterpret_cast<const char*>(&trailing), 4});
        if (status != ok) return status;
        from += n;
        size -= n;
        first = false;
    } while (size > 0);
    return ok;
}

} // namespace io_layer
