#pragma once

#include <string>
#include <string_view>

namespace run_driver {

// Prefix of the problem's files: from `batch.pfx`, or asked for on the screen until a file of that
// prefix and `extension` exists; the answer then replaces `batch.pfx`. The end of the standard
// input ends the run.
std::string getModelPrefix(std::string_view extension);

} // namespace run_driver
