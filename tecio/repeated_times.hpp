#pragma once

#include <cstdint>

namespace tecio {

// Returns the number of zones with this time in a resumed data set, before the time of its first
// new zone is set; 0 after that. Another library with the functions of tecio.h lacks these two
// functions.
std::int32_t resumedZonesAt(const void* fileHandle, double time, std::int32_t strand);

// Makes a resumed data set keep the first `count` zones with the time of its first new zone,
// because they belong to other output times with the same time. By default it keeps none.
void keepZones(void* fileHandle, std::int32_t count);

} // namespace tecio
