#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tecio/layout.hpp"
#include "tvncommon/byte_file.hpp"

// The file beside an unfinished data set, from which a later run goes on. It names all complete
// zones, also those that the header of the data set does not show yet:
//
//     0   8 bytes  "#!TVNSHD"
//     8   int64    size of what counts, from byte 0 on
//    16   uint64   checksum of what counts, from byte 24 on
//    24            head of the data set, then header and data head of each zone
//
// Bytes 8 to 23 change in one write, behind that of the zone itself: a zone is named or it is not.
namespace tecio {

struct Mark {
    std::int64_t size = 0;
    std::uint64_t checksum = 0;
};

struct Sidecar {
    byte_file::File file;
    std::vector<Mark> marks; // of the head alone, then with each zone that is named
};

// All return a status. `createSidecar` replaces a file of that name at once.
int createSidecar(const std::string& path, const Head& head, Sidecar& sidecar);

int openSidecar(const std::string& path, Sidecar& sidecar, Head& head, std::vector<Zone>& zones);

int nameZone(Sidecar& sidecar, const Zone& zone);
int unnameZones(Sidecar& sidecar, std::size_t count); // all after the first `count`

} // namespace tecio
