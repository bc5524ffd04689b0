#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tecio/layout.hpp"
#include "tvncommon/byte_file.hpp"

// The file beside an unfinished data set, from which a later run goes on. It names all complete
// zones, also those that the header of the data set does not show yet:
//
//     0   8 bytes  "#!TVNSH2"
//     8   int64    size of what counts, from byte 0 on
//    16   uint64   checksum of what counts, from byte 24 on
//    24            head of the data set, then for each zone its header, its data head and a
//                  uint64, the checksum of its data, or 0 where the data set is not durable
//
// Bytes 8 to 23 change in one write, after that of the zone itself: a zone is named or it is not.
// In a durable data set each of the two writes is on the disk before the next one.
namespace tecio {

struct Mark {
    std::int64_t size = 0;
    std::uint64_t checksum = 0;
};

struct Sidecar {
    byte_file::File file;
    bool durable = false;
    std::vector<Mark> marks; // of the head alone, then with each zone that is named
};

// All return a status. `createSidecar` replaces a file of that name at once.
int createSidecar(const std::string& path, const Head& head, Sidecar& sidecar);

// `checksum` is that of the last zone.
int openSidecar(const std::string& path, Sidecar& sidecar, Head& head, std::vector<Zone>& zones,
                std::uint64_t& checksum);

int nameZone(Sidecar& sidecar, const Zone& zone, std::uint64_t checksum);
int unnameZones(Sidecar& sidecar, std::size_t count); // all after the first `count`

} // namespace tecio
