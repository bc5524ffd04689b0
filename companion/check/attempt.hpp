#pragma once

#include <functional>
#include <string>
#include <vector>

namespace check {

// What a step of a run did.
struct Outcome {
    bool ended = false;                // it would have ended the run
    std::vector<std::string> messages; // of its banners, each on one line
};

// Runs a step of meshrake, which may end the run, and keeps its banners. Files that the step left
// open are closed if it ended the run; so are all others that have a unit.
Outcome attempt(const std::function<void()>& step);

} // namespace check
