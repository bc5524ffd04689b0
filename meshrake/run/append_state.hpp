#pragma once

#include <cstdint>

namespace run_driver {

// Records the last finished output time in <prefix>o.tec_append: one record of one integer. A
// failed open is passed over; a failed write ends the run.
void writeTecplotAppend(std::int32_t index);

} // namespace run_driver
