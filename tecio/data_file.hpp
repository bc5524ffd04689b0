#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tecio/checksum.hpp"
#include "tecio/layout.hpp"
#include "tecio/sidecar.hpp"
#include "tvncommon/byte_file.hpp"

// An unfinished data set. The order of writes never shows a zone that does not exist, to a reader
// or to a later run after a kill:
//
//     create        sidecar without zones; then, with the first zone, the data set's header
//     write a zone  values and node lists after the data that count, its data head and ranges last
//     end a zone    the sidecar names it: its entry, then the sidecar's size and checksum
//     flush         zone headers replace padding, page by page from the first
//     drop zones    padding replaces their headers, page by page from the last; then the sidecar
//                   names them no more; only then may other data replace theirs
//     finish        flush, then the sidecar is removed
//
// A file or a copy that replaces another is complete before its rename. In a durable data set each
// step, and each page of headers, is on the disk before the next one, and so are new names: a power
// cut leaves what a kill would. Its caller may rely on each zone that has all its arrays. Any other
// data set is on the disk once, before its sidecar is removed.
namespace tecio {

// Least and greatest value, NaN left out; the least is above the greatest when there is none.
struct Range {
    double least, greatest;
};

// The zone that values go to.
struct CurrentZone {
    std::int32_t number = 0; // as its caller knows it, 0: no zone
    Zone zone;
    DataPart part;
    std::vector<std::int64_t> written; // values of each variable that are in the file
    std::vector<Range> ranges;
    std::int64_t nodesWritten = 0;
    std::vector<Checksum> checksums; // of each variable and of the node lists, if it is durable
    bool begun = false;              // something was written
};

struct DataFile {
    std::string path;
    byte_file::File file;
    file_replacement::Replacement replacement; // by a file whose header is not complete
    Sidecar sidecar;
    bool durable = false;
    bool failed = false;

    Head head;
    Bytes aux;                // auxiliary records, as they are to be
    bool settled = false;     // head and auxiliary records in the file are those of this opening
    bool continued = false;   // zones of an earlier run are there, none of this one
    Bytes auxInFile;          // the records that a continued file has
    std::int64_t auxAt = 0;   // positions in the file: the records,
    std::int64_t zonesAt = 0; // the first zone header,
    std::int64_t dataAt = 0;  // the data of zone 1,
    std::int64_t dataEnd = 0; // the end of the data that count,
    std::int64_t size = 0;    // the end of the file

    std::vector<Zone> zones;              // all complete ones
    std::vector<std::int64_t> headerEnds; // of the zones whose headers are in the file
    bool headerIsCut = false;             // the last of these is there in part
    CurrentZone current;
};

// Name of the sidecar of a data set.
std::string sidecarPath(const std::string& path);

// All of the following return a status.

// Begins the data set `file.path` anew, with the title and variables of `file.head`.
int createDataFile(DataFile& file);

// Goes on with a data set that has a sidecar and the variables of `file.head`; keeps its title.
int continueDataFile(DataFile& file);

// Puts head and auxiliary records into the file; the room suits zones of this size.
int settle(DataFile& file, std::int64_t zoneBytes);

// Puts the headers of all complete zones into the file.
int flush(DataFile& file);

// End of the first `count` headers in the file.
std::int64_t headersEnd(const DataFile& file, std::size_t count);

// Overwrites the headers after the first `count` with padding.
int hideHeaders(DataFile& file, std::size_t count);

// Removes the zones after the first `count`, and their headers.
int dropZones(DataFile& file, std::size_t count);

// Flushes and ends the data set.
int finish(DataFile& file);

// Makes `zone` the current one; a shared variable comes from the zone that has the values.
int beginZone(DataFile& file, Zone zone, std::int32_t& number);
int setTime(DataFile& file, double time, std::int32_t strand);

// The next values of a variable (from 0), of its type, or the next node numbers, which count from
// `firstNode`.
int writeValues(DataFile& file, std::size_t variable, std::int64_t count, const void* values);
int writeNodes(DataFile& file, std::int64_t count, const std::int32_t* nodes,
               std::int32_t firstNode);

// Names the current zone if all of it is in the file, and ends it; `refused` for one that is not
// complete.
int endZone(DataFile& file);

} // namespace tecio
