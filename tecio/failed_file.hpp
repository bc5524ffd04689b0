#pragma once

namespace tecio {

// Whether the last call of tecio.h that failed with a status of the I/O layer failed at the
// sidecar, not at the data set itself. Another library with the functions of tecio.h lacks this
// function.
bool sidecarFailed();

} // namespace tecio
