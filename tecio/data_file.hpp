#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tecio/checksum.hpp"
#include "tecio/layout.hpp"
#include "tecio/sidecar.hpp"
#include "tvncommon/io/byte_file.hpp"

// An unfinished data set. In this order of writes neither a reader nor a later run after a kill
// finds a zone whose data are missing:
//
//     create        sidecar without zones; then, with the first zone, the data set's header
//     write a zone  values and node lists after the committed data, then its data head and ranges
//     commit it     its entry in the sidecar, then the sidecar's size and hash
//     flush         zone headers replace padding, page by page from the first
//     drop zones    padding replaces their headers, page by page from the last; then size and hash
//                   of the sidecar exclude them; only then may other data overwrite theirs
//     finish        flush, then the sidecar is removed
//
// A new file or copy is complete before it is renamed. In a durable data set each step, each page
// of headers and each rename is on the disk before the next one, so a power cut does no more harm
// than a kill. A zone is committed by the call that completes its last array. Any other data set is
// synced once, before its sidecar is removed.
namespace tecio {

// Least and greatest value, without NaN; the least is above the greatest if there is no other.
struct Range {
    double least, greatest;
};

// The zone that is being written.
struct CurrentZone {
    std::int32_t number = 0; // from 1, 0: no zone
    Zone zone;
    DataPart part;
    std::vector<std::int64_t> written; // values of each variable that are in the file
    std::vector<Range> ranges;
    std::int64_t nodesWritten = 0;
    std::vector<Checksum> checksums; // of the variables and the node lists, if durable
    bool begun = false;              // something was written
};

struct DataFile {
    std::string path;
    byte_file::File file;
    file_replacement::Replacement replacement; // by a file whose header is not complete
    Sidecar sidecar;
    bool durable = false;
    bool failed = false;
    bool sidecarFailed = false; // the failure was at the sidecar

    Head head;
    Bytes aux;                  // auxiliary records of this opening
    bool headerWritten = false; // head and auxiliary records of this opening are in the file
    bool resumed = false;       // the file has zones of an earlier opening, none of this one
    std::int32_t zonesKept = 0; // of those with the time of the first new zone
    Bytes auxInFile;            // auxiliary records of a resumed file
    std::int64_t auxAt = 0;     // positions in the file: auxiliary records,
    std::int64_t zonesAt = 0;   // first zone header,
    std::int64_t dataAt = 0;    // data of zone 1,
    std::int64_t dataEnd = 0;   // end of the committed data,
    std::int64_t size = 0;      // end of the file

    std::vector<Zone> zones;              // committed
    std::vector<std::int64_t> headerEnds; // of those whose headers are in the file
    bool headerIsCut = false;             // the last of these is incomplete
    CurrentZone current;
};

// Name of the sidecar of a data set.
std::string sidecarPath(const std::string& path);

// Notes whether an operation on the sidecar failed, and returns its status.
int sidecarStatus(DataFile& file, int status);

// All of the following return a status.

// Creates or replaces the data set `file.path`, with the title and variables of `file.head`.
int createDataFile(DataFile& file);

// Resumes an unfinished data set. Its sidecar must exist and list the variables of `file.head`; the
// title on disk is kept.
int resumeDataFile(DataFile& file);

// Writes the file header and auxiliary records, with padding sized for zones of `zoneBytes`.
int writeHeader(DataFile& file, std::int64_t zoneBytes);

// Commits the current zone, and writes the headers of all zones.
int flush(DataFile& file);

// End of the first `count` headers in the file.
std::int64_t headersEnd(const DataFile& file, std::size_t count);

// Overwrites the headers after the first `count` with padding.
int hideHeaders(DataFile& file, std::size_t count);

// Removes the zones after the first `count`, and their headers.
int dropZones(DataFile& file, std::size_t count);

// Flushes and ends the data set.
int finish(DataFile& file);

// Makes `zone` the current one. A share is replaced by the zone that has the values.
int beginZone(DataFile& file, Zone zone, std::int32_t& number);
int setTime(DataFile& file, double time, std::int32_t strand);

// Zones with this time that a first new zone would replace; 0 if there is one already.
std::int32_t resumedZonesAt(const DataFile& file, double time, std::int32_t strand);

// The next values of a variable (from 0), of its type, or the next node numbers, which count from
// `firstNode`.
int writeValues(DataFile& file, std::size_t variable, std::int64_t count, const void* values);
int writeNodes(DataFile& file, std::int64_t count, const std::int32_t* nodes,
               std::int32_t firstNode);

// Commits the current zone, if there is one; returns `refused` while arrays are missing.
int endZone(DataFile& file);

} // namespace tecio
