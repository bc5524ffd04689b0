#pragma once

namespace tecio {

// Whether the data sets opened from now on survive a power cut. Every zone of a durable one is on
// the disk when the call that completes it returns, and so is its header when a flush returns. An
// open compares the last zone with its checksum; it refuses, with status 6, an unfinished data set
// that was not durable before. Another library with the functions of tecio.h lacks this one.
void setDurable(bool durable);

} // namespace tecio
