#pragma once

#include <cstdint>

// What this project's writer library has beside the functions of tecio.h. Another library with
// those functions lacks these, so callers test MESHRAKE_OWN_TECIO first.
namespace tecio {

// Sets whether data sets that are opened from now on are durable, that is, survive a power cut. A
// zone of a durable data set is on the disk when the call that completes it returns, its header
// when a flush returns. An open compares the data of the last zone with their checksum; it returns
// status 6 for an unfinished data set that was not durable.
void setDurable(bool durable);

// Whether the last call of tecio.h that failed with a status of the I/O layer failed at the
// sidecar, not at the data set itself.
bool sidecarFailed();

// Returns the number of zones with this time in a resumed data set, before the time of its first
// new zone is set; 0 after that.
std::int32_t resumedZonesAt(const void* fileHandle, double time, std::int32_t strand);

// Makes a resumed data set keep the first `count` zones with the time of its first new zone,
// because they belong to other output times with the same time. By default it keeps none.
void keepZones(void* fileHandle, std::int32_t count);

// Closes data sets that an earlier run left open, without finishing them, and restores the
// defaults of all settings.
void reset();

} // namespace tecio
