#pragma once

#include <string>
#include <string_view>

namespace run {

// Prefix of the problem's files: from `batch.pfx`, or asked for on the screen until a file of that
// prefix and `extension` exists, which sets `answered`. The end of the standard input ends the run.
std::string getModelPrefix(std::string_view extension, bool& answered);

// Replaces `batch.pfx` by one with this prefix. A file that cannot be opened is reported on the
// screen; a failed write ends the run.
void writeBatchFile(const std::string& prefix);

} // namespace run
