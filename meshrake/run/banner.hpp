#pragma once

#include <string_view>

namespace run {

// Writes the program's banner on a file unit; on the screen for a unit below 1.
void header(int unit);

// Ends the run with status 0, after the message, if there is one, and the closing lines.
[[noreturn]] void normalExitStop(std::string_view message = {});

} // namespace run
