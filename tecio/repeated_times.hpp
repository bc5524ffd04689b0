#pragma once

#include <cstdint>

namespace tecio {

// Number of zones with this time in a resumed data set, before the time of its first new zone is
// set; 0 after that. Another library with the functions of tecio.h lacks these two.
std::int32_t resumedZonesAt(const void* fileHandle, double time, std::int32_t strand);

// Lets a resumed data set keep the first `count` zones with the time of its first new zone, which
// are those of other output times. It keeps none unless this is called.
void keepZones(void* fileHandle, std::int32_t count);

} // namespace tecio
