#pragma once

#include <string>
#include <string_view>

namespace run {

// Returns the prefix of the problem's files from `batch.pfx`. If no file with this prefix and
// `extension` exists, asks for the prefix on the screen until one exists, and sets `answered` to
// true. The end of the standard input, and 1000 lines without a valid prefix, end the run.
std::string getModelPrefix(std::string_view extension, bool& answered);

// Reads the prefix from `batch.pfx`. Returns false, after a line on the screen, if that fails.
bool readBatchFile(std::string& prefix);

// Replaces `batch.pfx` by one with this prefix. A failed open is reported on the screen; a failed
// write ends the run.
void writeBatchFile(const std::string& prefix);

} // namespace run
