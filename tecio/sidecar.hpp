#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tecio/layout.hpp"
#include "tvncommon/io/byte_file.hpp"

// The sidecar is a file in the folder of an unfinished data set, from which a later run resumes it.
// It lists all committed zones, also those whose headers are not in the data set yet:
//
//     0   8 bytes  "#!TVNSH2"
//     8   int64    size of the valid contents, from byte 0
//    16   uint64   FNV-1a hash of the valid contents from byte 24
//    24            file header of the data set; then for each zone its header, the beginning of its
//                  data (`dataBeginBytes`) and a uint64: the checksum of its data, or 0 if the data
//                  set is not durable
//
// Bytes 8 to 23 are a checkpoint. They change in one write after that of the zone's entry, so a
// zone is either committed or not. In a durable data set each of the two writes is synced.
namespace tecio {

struct Checkpoint {
    std::int64_t size = 0;      // bytes of the valid contents
    std::uint64_t checksum = 0; // their hash
};

struct Sidecar {
    byte_file::File file;
    bool durable = false;
    std::vector<Checkpoint> checkpoints; // without zones, then after each zone
};

// All functions return a status.

// Creates a sidecar without zones. An existing file is replaced by a rename.
int createSidecar(const std::string& path, const FileHeader& header, Sidecar& sidecar);

// Reads the committed zones and the checksum of the last one. The mode is `update`, or `read` if no
// zone is to be added or removed.
int openSidecar(const std::string& path, system_calls::OpenMode mode, Sidecar& sidecar,
                FileHeader& header, std::vector<Zone>& zones, std::uint64_t& checksum);

// Adds a zone, whose data must be in the data set.
int commitZone(Sidecar& sidecar, const Zone& zone, std::uint64_t checksum);

// Removes the zones after the first `count`.
int rollbackZones(Sidecar& sidecar, std::size_t count);

} // namespace tecio
