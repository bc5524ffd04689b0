#include "tecio/data_file.hpp"

#include "tecio/status.hpp"
#include "tvncommon/io_layer.hpp"

#include <algorithm>

namespace tecio {

using io_layer::ok;
using system_calls::OpenMode;

namespace {

// Room for the headers of zones to come. Large zones get more of it: to make room later means to
// copy them all.
constexpr std::int64_t leastRoom = 65536;
constexpr std::int64_t mostRoomAtFirst = 262144;
constexpr std::int64_t zoneBytesPerRoomByte = 16;
constexpr std::int64_t roomGrowth = 4;

constexpr std::int64_t copyBytes = 1048576;
constexpr std::int64_t blankBytes = 4;

std::int64_t sizeOf(const Bytes& bytes) {
    return static_cast<std::int64_t>(bytes.size());
}

int write(DataFile& f, std::int64_t position, const Bytes& bytes) {
    f.size = std::max(f.size, position + sizeOf(bytes));
    return byte_file::writeAt(f.file, position, bytes.data(), sizeOf(bytes));
}

Bytes zoneHeaders(const DataFile& f, std::size_t first) {
    Bytes out;
    for (std::size_t z = first; z < f.zones.size(); ++z) out += zoneHeaderBytes(f.zones[z]);
    return out;
}

// Everything in front of the data, with `room` bytes behind the zone headers, and its positions.
Bytes headerBytes(DataFile& f, std::int64_t room) {
    Bytes out = headBytes(f.head);
    f.auxAt = sizeOf(out);
    out += f.aux;
    f.zonesAt = sizeOf(out);
    out += zoneHeaders(f, 0);
    f.shownEnd = sizeOf(out);
    f.shown = f.zones.size();
    const Bytes begin = roomBegin();
    const Bytes end = roomEnd();
    out += begin + roomBlanks(room - sizeOf(begin) - sizeOf(end)) + end;
    return out;
}

int copyData(const byte_file::File& from, std::int64_t fromAt, const byte_file::File& to,
             std::int64_t toAt, std::int64_t size) {
    std::vector<char> block(static_cast<std::size_t>(std::min(size, copyBytes)));
    for (std::int64_t done = 0; done < size;) {
        const std::int64_t n = std::min(size - done, copyBytes);
        int status = byte_file::readAt(from, fromAt + done, block.data(), n);
        if (status == ok) status = byte_file::writeAt(to, toAt + done, block.data(), n);
        if (status != ok) return status;
        done += n;
    }
    return ok;
}

// Puts a copy with other records or more room in the place of the file, at once.
int replaceWithCopy(DataFile& f, std::int64_t room) {
    const std::string made = copyPath(f.path);
    const std::int64_t dataBytes = f.dataEnd - f.dataAt;
    const std::int64_t oldDataAt = f.dataAt;
    const Bytes header = headerBytes(f, room);
    byte_file::File copy;
    std::int64_t size = 0;
    int status = byte_file::open(made, OpenMode::update, copy, size);
    if (status == ok && size > 0) status = byte_file::truncate(copy, 0);
    if (status == ok) status = byte_file::writeAt(copy, 0, header.data(), sizeOf(header));
    if (status == ok) status = copyData(f.file, oldDataAt, copy, sizeOf(header), dataBytes);
    if (status == ok) status = byte_file::rename(made, f.path);
    if (status != ok) {
        byte_file::close(copy);
        byte_file::remove(made);
        return status;
    }
    byte_file::close(f.file);
    f.file = copy;
    f.dataAt = sizeOf(header);
    f.dataEnd = f.size = f.dataAt + dataBytes;
    return ok;
}

// A new file takes its place when its header is whole.
int writeNewHeader(DataFile& f, std::int64_t zoneBytes) {
    const std::int64_t room =
        std::clamp(zoneBytes / zoneBytesPerRoomByte / 4 * 4, leastRoom, mostRoomAtFirst);
    const Bytes header = headerBytes(f, room);
    f.dataAt = f.dataEnd = sizeOf(header);
    const int status = write(f, 0, header);
    return status == ok ? byte_file::rename(copyPath(f.path), f.path) : status;
}

int renewAux(DataFile& f) {
    if (f.aux.empty()) f.aux = f.auxInFile;
    if (f.aux == f.auxInFile) return ok;
    if (f.aux.size() == f.auxInFile.size()) return write(f, f.auxAt, f.aux);
    return replaceWithCopy(f, f.dataAt - f.zonesAt);
}

} // namespace

std::string sidecarPath(const std::string& path) {
    return path + ".szhdr";
}

std::string copyPath(const std::string& path) {
    return path + ".new";
}

int createDataFile(DataFile& f) {
    int status = createSidecar(sidecarPath(f.path), f.head, f.sidecar);
    // What is there now, and is replaced later, must be a file that can be written.
    if (status == ok && io_layer::exists(f.path))
        status = byte_file::open(f.path, OpenMode::update, f.file, f.size);
    if (status == ok) status = byte_file::open(copyPath(f.path), OpenMode::update, f.file, f.size);
    // The truncation of an empty file would make its close wait for the disk.
    if (status == ok && f.size > 0) status = byte_file::truncate(f.file, 0);
    f.size = 0;
    return status;
}

int settle(DataFile& f, std::int64_t zoneBytes) {
    if (f.settled) return ok;
    f.settled = true;
    return f.continued ? renewAux(f) : writeNewHeader(f, zoneBytes);
}

int flush(DataFile& f) {
    int status = endZone(f);
    if (status == ok) status = settle(f, 0);
    if (status != ok) return status;
    if (f.shown < f.zones.size()) {
        const Bytes headers = zoneHeaders(f, f.shown);
        const Bytes room = roomBegin();
        const std::int64_t end = f.shownEnd + sizeOf(headers);
        const bool fits = end + sizeOf(room) + blankBytes + sizeOf(roomEnd()) <= f.dataAt;
        if (fits) {
            status = write(f, f.shownEnd, headers + room);
            f.shown = f.zones.size();
            f.shownEnd = end;
        } else {
            status = replaceWithCopy(f, (f.dataAt - f.zonesAt) * roomGrowth);
        }
    }
    // What an interrupted run, or a longer zone that was replaced, left behind.
    if (status == ok && f.size > f.dataEnd) {
        status = byte_file::truncate(f.file, f.dataEnd);
        f.size = f.dataEnd;
    }
    return status;
}

// The header goes first: as long as the sidecar names the zone, its data stay as they are.
int dropLastZone(DataFile& f) {
    const Zone& last = f.zones.back();
    if (f.shown == f.zones.size()) {
        const std::int64_t headerBytes = sizeOf(zoneHeaderBytes(last));
        f.shownEnd -= headerBytes;
        --f.shown;
        const int status = write(f, f.shownEnd, roomBegin() + roomBlanks(headerBytes));
        if (status != ok) return status;
    }
    const int status = unnameLastZone(f.sidecar);
    if (status != ok) return status;
    f.dataEnd -= dataPartOf(last).size;
    f.zones.pop_back();
    return ok;
}

int finish(DataFile& f) {
    int status = flush(f);
    if (status == ok) status = byte_file::close(f.file);
    if (status == ok) status = byte_file::remove(sidecarPath(f.path));
    return status;
}

} // namespace tecio
