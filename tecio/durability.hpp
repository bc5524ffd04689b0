#pragma once

namespace tecio {

// Sets whether data sets that are opened from now on are durable, that is, survive a power cut. A
// zone of a durable data set is on the disk when the call that completes it returns, its header
// when a flush returns. An open compares the data of the last zone with their checksum; it returns
// status 6 for an unfinished data set that was not durable. Another library with the functions of
// tecio.h lacks this function.
void setDurable(bool durable);

} // namespace tecio
