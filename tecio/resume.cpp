#include "tecio/data_file.hpp"

#include "tecio/status.hpp"
#include "tvncommon/io/io_layer.hpp"

#include <algorithm>
#include <utility>

namespace tecio {

using io_layer::ok;
using system_calls::OpenMode;

namespace {

constexpr std::int64_t readBytes = 1048576; // few calls, and little memory

// Finds the end of the auxiliary records, where a zone header or padding begins.
bool findAuxEnd(const DataFile& f, std::string_view bytes, std::int64_t& end) {
    Reader reader{bytes, static_cast<std::size_t>(f.auxAt)};
    for (;;) {
        end = static_cast<std::int64_t>(reader.position);
        if (bytes.substr(reader.position).starts_with(paddingAt(end))) return true;
        const float marker = readFloat(reader);
        if (marker == zoneMarker) return true;
        if (marker == variableAuxMarker) readInt(reader);
        readText(reader);
        const bool isText = readInt(reader) == 0;
        readText(reader);
        const bool isAux = marker == auxMarker || marker == variableAuxMarker;
        if (!reader.good || !isText || !isAux) return false;
    }
}

// Checks that the file has the headers of the first zones and then padding, and finds the beginning
// of the data. A run that was killed while it wrote or removed a header of several pages left pages
// that are neither. They count as one incomplete header, which has at most as many pages as the
// longest header.
bool compareHeaders(DataFile& f, std::string_view bytes) {
    f.headerEnds.clear();
    f.headerIsIncomplete = false;
    std::int64_t at = f.zonesAt, longest = 1, incompletePages = 0;
    const auto skipIfFound = [&](const Bytes& expected) {
        const bool found = at <= static_cast<std::int64_t>(bytes.size()) &&
                           bytes.substr(static_cast<std::size_t>(at)).starts_with(expected);
        if (found) at += sizeOf(expected);
        return found;
    };
    for (const Zone& zone : f.zones) longest = std::max(longest, pagesOf(zoneHeaderBytes(zone)));
    for (;;) {
        const std::size_t zone = f.headerEnds.size();
        if (!f.headerIsIncomplete && zone < f.zones.size() &&
            skipIfFound(zoneHeaderBytes(f.zones[zone]))) {
            f.headerEnds.push_back(at);
        } else if (!skipIfFound(paddingAt(at))) {
            const bool ends = skipIfFound(headersEndBytes());
            f.dataAt = at;
            if (ends || longest == 1 || incompletePages++ > longest) return ends;
            at += leftOnPage(at);
            f.headerEnds.resize(zone - (f.headerIsIncomplete ? 1 : 0));
            f.headerEnds.push_back(at);
            f.headerIsIncomplete = true;
        }
    }
}

// Reads and checks everything before the data, at most `maximumBytes` bytes. Its length is known
// only after it is parsed, so more bytes are read until it is complete.
int checkHeader(DataFile& f, std::int64_t maximumBytes) {
    const Bytes header = fileHeaderBytes(f.fileHeader);
    f.auxAt = sizeOf(header);
    Bytes bytes;
    for (std::int64_t size = 1048576;; size *= 4) {
        bytes.resize(
            static_cast<std::size_t>(std::max<std::int64_t>(std::min(size, maximumBytes), 0)));
        const int status = byte_file::readAt(f.file, 0, bytes.data(), sizeOf(bytes));
        if (status != ok) return status;
        if (bytes.starts_with(header) && findAuxEnd(f, bytes, f.zonesAt) &&
            compareHeaders(f, bytes))
            break;
        if (size >= maximumBytes) return damagedDataSet;
    }
    f.auxInFile = bytes.substr(header.size(), static_cast<std::size_t>(f.zonesAt - f.auxAt));
    return ok;
}

// Compares the beginning of each zone's data with the sidecar.
int checkData(DataFile& f) {
    f.dataEnd = f.dataAt;
    for (const Zone& zone : f.zones) {
        const Bytes expected = dataBeginBytes(zone);
        Bytes found(expected.size(), 0);
        const int status = byte_file::readAt(f.file, f.dataEnd, found.data(), sizeOf(found));
        if (status != ok) return status;
        if (found != expected) return damagedDataSet;
        f.dataEnd += layoutOf(zone).size;
    }
    return f.dataEnd <= f.size ? ok : damagedDataSet;
}

// Compares the data of the last zone with their checksum in the sidecar. In a durable data set
// every zone was synced before its entry in the sidecar, so only data of the last zone can have
// been lost without a sign in the files.
int checkLastZone(const DataFile& f, std::uint64_t checksum) {
    if (checksum == 0) return f.durable ? notDurable : ok;
    const Zone& zone = f.zones.back();
    const ZoneLayout layout = layoutOf(zone);
    const std::int64_t zoneAt = f.dataEnd - layout.size;
    std::int64_t arraysAt = layout.nodeMap;
    std::vector<Checksum> arrays(zone.types.size() + 1);
    std::vector<char> block(static_cast<std::size_t>(std::min(layout.size, readBytes)));
    const auto add = [&](Checksum& array, std::int64_t at, std::int64_t size) {
        int status = ok;
        for (std::int64_t done = 0; done < size && status == ok; done += readBytes) {
            const std::int64_t n = std::min(size - done, readBytes);
            status = byte_file::readAt(f.file, zoneAt + at + done, block.data(), n);
            addBytes(array, block.data(), n);
        }
        return status;
    };
    int status = ok;
    for (std::size_t v = 0; v < zone.types.size() && status == ok; ++v) {
        if (zone.shares[v] > 0) continue;
        arraysAt = std::min(arraysAt, layout.values[v]);
        status = add(arrays[v], layout.values[v], valueCount(zone, v) * valueBytes(zone.types[v]));
    }
    if (status == ok) status = add(arrays.back(), layout.nodeMap, nodeMapCount(zone) * 4);
    Bytes begin(static_cast<std::size_t>(arraysAt), '\0');
    if (status == ok) status = byte_file::readAt(f.file, zoneAt, begin.data(), arraysAt);
    if (status != ok) return status;
    return zoneChecksum(begin, arrays) == checksum ? ok : damagedDataSet;
}

// Handles a sidecar that lists no zones. A data set without zones is replaced, since nothing is
// lost. A data set with zones does not belong to the sidecar: the run that created the sidecar was
// killed before it replaced the data set.
int recreate(DataFile& f, bool acceptsAnyVariables) {
    Bytes bytes(static_cast<std::size_t>(std::min(f.size, readBytes)), 0);
    int status = byte_file::readAt(f.file, 0, bytes.data(), sizeOf(bytes));
    if (status != ok) return status;
    Reader reader{bytes};
    FileHeader expected = std::exchange(f.fileHeader, readFileHeader(reader));
    if (!reader.good) return damagedDataSet;
    status = checkHeader(f, sizeOf(bytes));
    f.fileHeader = std::move(expected);
    if (status != ok) return status == damagedDataSet ? damagedSidecar : status;
    if (acceptsAnyVariables) return invalidCall;
    return f.readOnly ? ok : createDataFile(f);
}

} // namespace

int resumeDataFile(DataFile& f) {
    FileHeader onDisk;
    std::uint64_t checksum = 0;
    const OpenMode mode = f.readOnly ? OpenMode::read : OpenMode::update;
    int status = sidecarStatus(
        f, openSidecar(sidecarPath(f.path), mode, f.sidecar, onDisk, f.zones, checksum));
    if (status == ok) status = byte_file::open(f.path, mode, f.file, f.size);
    if (status != ok) return status;
    const bool acceptsAnyVariables = f.fileHeader.variables == std::vector<std::string>{""};
    if (f.zones.empty()) return recreate(f, acceptsAnyVariables);
    if (!acceptsAnyVariables && f.fileHeader.variables != onDisk.variables) return otherVariables;
    f.fileHeader = onDisk;
    std::int64_t dataBytes = 0;
    for (const Zone& zone : f.zones) dataBytes += layoutOf(zone).size;
    status = checkHeader(f, f.size - dataBytes);
    if (status == ok) status = checkData(f);
    if (status == ok) status = checkLastZone(f, checksum);
    if (f.readOnly) return status;
    if (status == ok && f.headerIsIncomplete) status = removeHeaders(f, f.headerEnds.size() - 1);
    f.resumed = true;
    return status;
}

} // namespace tecio
