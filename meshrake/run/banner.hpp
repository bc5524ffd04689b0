#pragma once

#include <string_view>

namespace run {

// Writes the program's banner on a file unit, or on the screen if the unit is below 1.
void header(int unit);

// Writes the message, unless it is empty, and the closing lines on screen and echo file. Closes all
// files and ends the run with status 0.
[[noreturn]] void normalExitStop(std::string_view message = {});

} // namespace run
