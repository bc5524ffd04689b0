#pragma once

namespace tecio {

// Whether the last open that failed with a status of the I/O layer failed at the sidecar, not at
// the data set itself. Another library with the functions of tecio.h lacks this one.
bool sidecarFailed();

} // namespace tecio
