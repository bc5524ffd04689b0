#pragma once

#include "meshrake/run/domains.hpp"

namespace run {

// What the modeller asks for: reads <prefix>.plot.control or, where there is none or a new one is
// wanted, writes the template and leaves all options at their defaults.
void processControlFile(Domains& domains);

} // namespace run
