#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tecio/layout.hpp"
#include "tvncommon/io/byte_file.hpp"

// The file beside an unfinished data set with which a later run resumes it. It lists all committed
// zones, also those whose headers are not in the data set yet:
//
//     0   8 bytes  "#!TVNSH2"
//     8   int64    size of the valid contents, from byte 0
//    16   uint64   FNV-1a hash of the valid contents from byte 24
//    24            head of the data set, then for each zone its header, its data head and a
//                  uint64, the checksum of its data, or 0 where the data set is not durable
//
// Bytes 8 to 23 change in one write, after that of the zone's entry: a zone is committed or it is
// not. In a durable data set each of the two writes is synced.
namespace tecio {

struct Checkpoint {
    std::int64_t size = 0;
    std::uint64_t checksum = 0;
};

struct Sidecar {
    byte_file::File file;
    bool durable = false;
    std::vector<Checkpoint> checkpoints; // of the head alone, then after each zone
};

// All return a status. `createSidecar` replaces a file of that name by a rename.
int createSidecar(const std::string& path, const Head& head, Sidecar& sidecar);

// Also returns the checksum of the last zone.
int openSidecar(const std::string& path, Sidecar& sidecar, Head& head, std::vector<Zone>& zones,
                std::uint64_t& checksum);

int commitZone(Sidecar& sidecar, const Zone& zone, std::uint64_t checksum);
int rollbackZones(Sidecar& sidecar, std::size_t count); // all after the first `count`

} // namespace tecio
