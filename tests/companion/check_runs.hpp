#pragma once

#include "companion/check/check.hpp"
#include "tests/support/runs.hpp"
#include "tests/support/sample_files.hpp"

#include <string>
#include <vector>

// What the tests of meshrake-tool check share.
namespace check_runs {

// In an empty folder.
struct Check : testing::Test {
    sample_files::Folder folder;
};

// Findings as "kind file:line times text", with an exclamation mark if they end the run.
std::vector<std::string> findingsOf(const check::Report& report);

bool saysThatItEnds(const check::Report& report);

} // namespace check_runs
