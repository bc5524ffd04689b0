#include "tecio/data_file.hpp"

#include "tecio/status.hpp"
#include "tecio/wide_summary.hpp"
#include "tvncommon/io/io_layer.hpp"

#include <algorithm>
#include <array>

namespace tecio {

using io_layer::ok;

namespace {

constexpr std::int64_t noCall = -1; // an array without values also needs a call
constexpr std::int64_t unshared = 0;

// True if the arrays have the same type, location and number of values.
bool canShareValues(const Zone& zone, const Zone& source, std::size_t v) {
    return source.types[v] == zone.types[v] && source.locations[v] == zone.locations[v] &&
           valueCount(source, v) == valueCount(zone, v);
}

bool canShareMesh(const Zone& zone, const Zone& source) {
    return source.type == zone.type && source.elements == zone.elements &&
           source.nodes == zone.nodes;
}

// True if the mesh, types and locations are those of zone 1. The first new zone of a resumed data
// set must have them, because the zones after it share with zone 1.
bool fitsFirstZone(const Zone& zone, const Zone& first) {
    bool fits = canShareMesh(zone, first);
    for (std::size_t v = 0; fits && v < zone.types.size(); ++v)
        fits = canShareValues(zone, first, v);
    return fits;
}

// Replaces the source of a share that itself shares the array by the zone that has the values: some
// readers do not follow a second share. Returns false for an invalid share.
bool resolveShares(const std::vector<Zone>& zones, Zone& zone) {
    const auto earlier = static_cast<std::int32_t>(zones.size());
    const auto sourceOf = [&](std::int32_t number) -> const Zone& {
        return zones[static_cast<std::size_t>(number - 1)];
    };
    for (std::size_t v = 0; v < zone.shares.size(); ++v) {
        std::int32_t& share = zone.shares[v];
        if (share == unshared) continue;
        if (share < 0 || share > earlier || !canShareValues(zone, sourceOf(share), v)) return false;
        if (sourceOf(share).shares[v] > 0) share = sourceOf(share).shares[v];
    }
    std::int32_t& share = zone.connectivityShare;
    if (share == unshared) return true;
    if (share < 0 || share > earlier) return false;
    const Zone& source = sourceOf(share);
    if (source.connectivityShare > 0) share = source.connectivityShare;
    return canShareMesh(zone, source);
}

// True if all arrays are written. An array without values also needs a call.
bool isComplete(const CurrentZone& current) {
    const Zone& zone = current.zone;
    for (std::size_t v = 0; v < zone.types.size(); ++v)
        if (zone.shares[v] == unshared && current.written[v] != valueCount(zone, v)) return false;
    return zone.connectivityShare > 0 || current.nodesWritten == nodeMapCount(zone);
}

constexpr std::int64_t maximumGathered = 1048576; // bytes

// Starts to write the data to the disk while the run makes the next ones, so that the sync at the
// end of the data set or of a zone has less to wait for. Takes many bytes at once, because each
// call costs time.
void startSync(DataFile& f, std::int64_t position, std::int64_t bytes) {
    constexpr std::int64_t minimum = 1048576;
    PendingSync& pending = f.pendingSync;
    if (position != pending.end) pending.begin = position;
    pending.end = position + bytes;
    if (pending.end - pending.begin < minimum) return;
    byte_file::startSync(f.file, pending.begin, pending.end - pending.begin);
    pending.begin = pending.end;
}

int write(DataFile& f, std::int64_t position, const void* from, std::int64_t bytes) {
    const int status = byte_file::writeAt(f.file, position, from, bytes);
    if (status == ok) {
        f.size = std::max(f.size, position + bytes);
        startSync(f, position, bytes);
    }
    // The disk may be full: frees the space that was reserved or partly written.
    if (status != ok) byte_file::truncate(f.file, f.size);
    return status;
}

int writeGathered(DataFile& f) {
    GatheredData& gathered = f.gathered;
    const auto bytes = static_cast<std::int64_t>(gathered.bytes.size());
    const int status = bytes > 0 ? write(f, gathered.position, gathered.bytes.data(), bytes) : ok;
    gathered.bytes.clear();
    return status;
}

// Writes the ranges and all before them, and with them the gathered data.
int writeDataBegin(DataFile& f, const Bytes& begin) {
    GatheredData& gathered = f.gathered;
    const bool together = gathered.position == f.dataEnd && gathered.bytes.size() >= begin.size();
    if (together) std::copy(begin.begin(), begin.end(), gathered.bytes.begin());
    const int status = writeGathered(f);
    return together || status != ok ? status : write(f, f.dataEnd, begin.data(), sizeOf(begin));
}

int commitCurrentZone(DataFile& f) {
    CurrentZone& current = f.current;
    Bytes begin = dataBeginBytes(current.zone);
    for (std::size_t v = 0; v < current.ranges.size(); ++v) {
        if (current.zone.shares[v] != unshared) continue;
        Range range = current.ranges[v];
        if (range.least > range.greatest) range = {0, 0};
        begin.append(reinterpret_cast<const char*>(&range), sizeof range);
    }
    int status = writeDataBegin(f, begin);
    if (status == ok && f.durable) status = byte_file::sync(f.file);
    const std::uint64_t checksum = f.durable ? zoneChecksum(begin, current.checksums) : 0;
    if (status == ok) status = sidecarStatus(f, commitZone(f.sidecar, current.zone, checksum));
    if (status != ok) return status;
    f.dataEnd += current.layout.size;
    f.zones.push_back(std::move(current.zone));
    f.resumed = false;
    current = {};
    return ok;
}

bool isAt(const Zone& zone, double time, std::int32_t strand) {
    return zone.time == time && zone.strand == strand;
}

// Removes the first zone with this time that is not kept, and all zones after it.
int removeZonesFrom(DataFile& f, double time, std::int32_t strand) {
    std::int32_t keptAtTime = f.zonesKept;
    const auto same = std::find_if(f.zones.begin(), f.zones.end(), [&](const Zone& zone) {
        return isAt(zone, time, strand) && keptAtTime-- <= 0;
    });
    if (same == f.zones.end()) return ok;
    const auto kept = static_cast<std::size_t>(same - f.zones.begin());
    if (greatestShare(f.current.zone) > static_cast<std::int64_t>(kept)) return invalidCall;
    return removeZones(f, kept);
}

// Reserves the space of the zone. If its first array is small, the data before it, which are known
// at the commit, are gathered as zeros.
int beginData(DataFile& f, std::int64_t before, std::int64_t bytes) {
    f.current.anyWritten = true;
    if (before + bytes <= maximumGathered) {
        f.gathered.position = f.dataEnd;
        f.gathered.bytes.assign(static_cast<std::size_t>(before), '\0');
    }
    const int status = byte_file::reserve(f.file, f.dataEnd, f.current.layout.size);
    if (status != ok) byte_file::truncate(f.file, f.size);
    return status;
}

int writeData(DataFile& f, std::int64_t position, const void* from, std::int64_t bytes) {
    GatheredData& gathered = f.gathered;
    int status = ok;
    if (!f.current.anyWritten) status = beginData(f, position - f.dataEnd, bytes);
    const auto end = gathered.position + static_cast<std::int64_t>(gathered.bytes.size());
    if (status == ok && (position != end || end + bytes > gathered.position + maximumGathered))
        status = writeGathered(f);
    if (status != ok) return status;
    // A large array goes to the file from the caller's memory.
    if (bytes > maximumGathered) return write(f, position, from, bytes);
    if (gathered.bytes.empty()) gathered.position = position;
    gathered.bytes.reserve(static_cast<std::size_t>(maximumGathered));
    const char* first = static_cast<const char*>(from);
    gathered.bytes.insert(gathered.bytes.end(), first, first + bytes);
    return ok;
}

// Updates the range and, in a durable data set, the checksum of a variable. A block of at most
// 128 KiB is still in the cache for the second pass.
void updateRangeAndChecksum(DataFile& f, std::size_t v, std::int64_t count, const void* values) {
    constexpr std::int64_t blockValues = 16384;
    const std::int32_t type = f.current.zone.types[v];
    const std::int64_t each = valueBytes(type);
    Range& range = f.current.ranges[v];
    Checksum* checksum = f.durable ? &f.current.checksums[v] : nullptr;
    for (std::int64_t done = summarizeWide(type, values, count, range, checksum); done < count;) {
        const char* block = static_cast<const char*>(values) + done * each;
        const std::int64_t n = std::min(count - done, blockValues);
        extend(range, rangeOf(type, block, n));
        if (checksum) addBytes(*checksum, block, n * each);
        done += n;
    }
}

int commitIfComplete(DataFile& f, int status) {
    return status == ok && isComplete(f.current) ? commitCurrentZone(f) : status;
}

} // namespace

static_assert(sizeof(Range) == rangeBytes);

int beginZone(DataFile& f, Zone zone, std::int32_t& number) {
    int status = endZone(f);
    if (status == ok && f.resumed && !fitsFirstZone(zone, f.zones[0])) status = otherMesh;
    if (status == ok && !resolveShares(f.zones, zone)) status = invalidCall;
    if (status != ok) return status;
    CurrentZone& current = f.current;
    current.layout = layoutOf(zone);
    status = writeHeader(f, current.layout.size);
    if (status != ok) return status;
    current.written.assign(zone.types.size(), noCall);
    current.ranges.clear();
    for (const std::int32_t type : zone.types) current.ranges.push_back(rangeOf(type, nullptr, 0));
    current.checksums.assign(zone.types.size() + 1, {});
    current.nodesWritten = noCall;
    current.zone = std::move(zone);
    number = current.number = static_cast<std::int32_t>(f.zones.size()) + 1;
    return ok;
}

std::int32_t resumedZonesAt(const DataFile& f, double time, std::int32_t strand) {
    if (!f.resumed) return 0;
    return static_cast<std::int32_t>(
        std::count_if(f.zones.begin(), f.zones.end(),
                      [=](const Zone& zone) { return isAt(zone, time, strand); }));
}

int setTime(DataFile& f, double time, std::int32_t strand) {
    CurrentZone& current = f.current;
    if (current.anyWritten) return invalidCall;
    current.zone.time = time;
    current.zone.strand = strand;
    if (f.resumed) {
        const int status = removeZonesFrom(f, time, strand);
        if (status != ok) return status;
    }
    f.resumed = false;
    return commitIfComplete(f, ok);
}

int writeValues(DataFile& f, std::size_t v, std::int64_t count, const void* values) {
    CurrentZone& current = f.current;
    const std::int64_t all = valueCount(current.zone, v);
    std::int64_t& written = current.written[v];
    if (current.zone.shares[v] != unshared || written == all) return invalidCall;
    written = std::max<std::int64_t>(written, 0);
    if (count < 0 || count > all - written) return invalidCall;
    updateRangeAndChecksum(f, v, count, values);
    const std::int64_t each = valueBytes(current.zone.types[v]);
    const int status =
        writeData(f, f.dataEnd + current.layout.values[v] + written * each, values, count * each);
    written += count;
    return commitIfComplete(f, status);
}

int writeNodes(DataFile& f, std::int64_t count, const std::int32_t* nodes, std::int32_t firstNode) {
    CurrentZone& current = f.current;
    const std::int64_t all = nodeMapCount(current.zone);
    if (current.zone.connectivityShare > 0 || current.nodesWritten == all) return invalidCall;
    current.nodesWritten = std::max<std::int64_t>(current.nodesWritten, 0);
    if (count < 0 || count > all - current.nodesWritten) return invalidCall;
    // The file counts nodes from 0. A block of at most 2 MiB is still in the cache when it is
    // written, and goes to the file without the copy of small arrays.
    constexpr std::int64_t blockNodes = 524288;
    std::vector<std::int32_t> block(static_cast<std::size_t>(std::min(count, blockNodes)));
    int status = ok;
    for (std::int64_t done = 0; done < count && status == ok;) {
        const std::int64_t n = std::min(count - done, blockNodes);
        std::transform(nodes + done, nodes + done + n, block.begin(),
                       [firstNode](std::int32_t node) { return node - firstNode; });
        if (f.durable) addBytes(current.checksums.back(), block.data(), n * 4);
        status = writeData(f, f.dataEnd + current.layout.nodeMap + current.nodesWritten * 4,
                           block.data(), n * 4);
        current.nodesWritten += n;
        done += n;
    }
    return commitIfComplete(f, status);
}

int endZone(DataFile& f) {
    if (f.current.number == 0) return ok;
    return isComplete(f.current) ? commitCurrentZone(f) : invalidCall;
}

} // namespace tecio
