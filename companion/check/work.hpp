#pragma once

#include "companion/check/attempt.hpp"
#include "companion/check/report.hpp"
#include "meshrake/run/domains.hpp"

#include <map>
#include <set>
#include <string>

namespace check {

struct FileLine {
    std::string file;
    int number = 0;
};

// State of an examination.
struct Work {
    Report report;
    run::Domains domains;
    bool hasMesh = false;                         // pm could be read
    std::set<std::string> tested;                 // result files that the run would read
    std::map<std::string, FileLine> requestLines; // of the control file, by instruction
};

// Adds the messages of a step as findings. All but the last are warnings of the run.
void addMessages(Work& work, const Outcome& outcome, const Finding& finding);

// Runs a step and adds its messages. Returns false if the step would have ended the run.
bool tryStep(Work& work, const Finding& finding, const std::function<void()>& step);

} // namespace check
