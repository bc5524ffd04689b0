#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tecio/checksum.hpp"
#include "tecio/layout.hpp"
#include "tecio/sidecar.hpp"
#include "tecio/value_range.hpp"
#include "tvncommon/io/byte_file.hpp"

// An unfinished data set. The functions write in an order in which neither a reader nor a later run
// after a kill finds a zone whose data are missing. docs/formats.md, "Order of writes", describes
// the order and the syncs of a durable data set; a change here must keep to it.
namespace tecio {

// The zone that is being written.
struct CurrentZone {
    std::int32_t number = 0; // from 1, 0: no zone
    Zone zone;
    ZoneLayout layout;
    std::vector<std::int64_t> written; // number of values of each variable so far, -1: no call
    std::vector<Range> ranges;
    std::int64_t nodesWritten = 0;
    std::vector<Checksum> checksums; // of the variables and the node lists, if durable
    bool anyWritten = false;         // values or nodes are in the file or gathered
};

// Data of the current zone that are not in the file yet: small arrays share a write.
struct GatheredData {
    std::int64_t position = 0; // of the first byte
    std::vector<char> bytes;
};

// Data that were written but whose transfer to the disk has not been started: from `begin` to
// `end`.
struct PendingSync {
    std::int64_t begin = 0, end = 0;
};

struct DataFile {
    std::string path;
    byte_file::File file;
    file_replacement::Replacement replacement; // while the header of a new file is incomplete
    Sidecar sidecar;
    bool durable = false;
    bool readOnly = false; // `resumeDataFile` only tests whether the data set can be resumed
    bool failed = false;
    bool sidecarFailed = false; // the failure was at the sidecar

    FileHeader fileHeader;
    Bytes aux;                  // auxiliary records of this opening
    bool headerWritten = false; // file header and auxiliary records of this opening are in the file
    bool resumed = false;       // the file has zones of an earlier opening, none of this one
    std::int32_t zonesKept = 0; // zones with the time of the first new zone that are not replaced
    Bytes auxInFile;            // auxiliary records of a resumed file
    std::int64_t auxAt = 0;     // position of the auxiliary records
    std::int64_t zonesAt = 0;   // position of the first zone header
    std::int64_t dataAt = 0;    // position of the data of zone 1
    std::int64_t dataEnd = 0;   // end of the committed data
    std::int64_t size = 0;      // end of the file

    std::vector<Zone> zones;              // committed zones
    std::vector<std::int64_t> headerEnds; // end of each zone header in the file
    bool headerIsIncomplete = false;      // the last of these headers is incomplete
    CurrentZone current;
    GatheredData gathered;
    PendingSync pendingSync;
};

// Returns the name of the sidecar of a data set.
std::string sidecarPath(const std::string& path);

// Records whether an operation on the sidecar failed, and returns its status.
int sidecarStatus(DataFile& file, int status);

// The following functions return a status, unless another result is given.

// Creates or replaces the data set `file.path`, with the title and variables of `file.fileHeader`.
int createDataFile(DataFile& file);

// Resumes an unfinished data set. Its sidecar must exist and list the variables of
// `file.fileHeader`. The title on disk is kept.
int resumeDataFile(DataFile& file);

// Writes the file header and auxiliary records, with padding sized for zones of `zoneBytes`.
int writeHeader(DataFile& file, std::int64_t zoneBytes);

// Commits the current zone, and writes the headers of all zones.
int flush(DataFile& file);

// Steps of `writeHeader` and `flush` that do not write the file.

// Returns everything before the data, with at least `padding` bytes for more headers, and sets the
// positions.
Bytes bytesBeforeData(DataFile& file, std::int64_t padding);

// Returns the headers of the zones that have none in the file yet, for the position after the last
// header, and sets their ends.
Bytes pagesToPublish(DataFile& file);

// True if these headers fit between this position and the data.
bool fitsBeforeData(const DataFile& file, std::int64_t at, const Bytes& pages);

// Return the bytes of padding of a new file whose first zone has `zoneBytes`, and of a copy with
// more padding.
std::int64_t initialPadding(std::int64_t zoneBytes);
std::int64_t grownPadding(const DataFile& file);

// Returns the end of the first `count` zone headers in the file.
std::int64_t headersEnd(const DataFile& file, std::size_t count);

// Overwrites the headers after the first `count` with padding.
int removeHeaders(DataFile& file, std::size_t count);

// Removes the zones after the first `count`, and their headers.
int removeZones(DataFile& file, std::size_t count);

// Flushes and ends the data set.
int finish(DataFile& file);

// Makes `zone` the current zone and sets `number` to its number. A share of a shared array is
// replaced by the zone that has the values.
int beginZone(DataFile& file, Zone zone, std::int32_t& number);

// Sets the time of the current zone, before its values.
int setTime(DataFile& file, double time, std::int32_t strand);

// Returns the number of zones with this time that a first new zone would replace, or 0 if there is
// a new zone already.
std::int32_t resumedZonesAt(const DataFile& file, double time, std::int32_t strand);

// Write the next values of a variable (from 0) in the type of the variable, or the next node
// numbers, which count from `firstNode`. The call that completes the last array of the zone commits
// the zone.
int writeValues(DataFile& file, std::size_t variable, std::int64_t count, const void* values);
int writeNodes(DataFile& file, std::int64_t count, const std::int32_t* nodes,
               std::int32_t firstNode);

// Commits the current zone, if there is one. Returns `invalidCall` if arrays are missing.
int endZone(DataFile& file);

} // namespace tecio
