#pragma once

#include <functional>
#include <string>
#include <vector>

namespace check {

// The result of a step of a run.
struct Outcome {
    bool ended = false;                // the step would have ended the run
    std::vector<std::string> messages; // of its banners, each on one line
};

// Runs a step of meshrake, which may end the run, and returns the messages of its banners. If it
// ended the run, all files that have a unit are closed.
Outcome attempt(const std::function<void()>& step);

} // namespace check
