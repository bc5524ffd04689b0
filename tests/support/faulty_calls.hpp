#pragma once

#include "tests/support/runs.hpp"

#include <span>

// Runs in this process in which a system call fails, is interrupted, or reads or writes less.
namespace faulty_calls {

inline const std::string echoFile = "to.meshrake.eco";

// An entry of the table of system calls.
enum class Effect { none, change, growth }; // on files
struct Kind {
    const char* name;
    Effect effect;
    bool restarts;           // it can also fail with EINTR
    std::vector<int> errors; // errno values with which it fails
    void (*wrap)(system_calls::Table& table, const Kind& kind);
};
std::span<const Kind> kinds(); // allocation is the last
const Kind* kind(std::string_view name);

enum class Way {
    none,
    once,      // one call fails
    lasting,   // after the call fails, no call lets a file grow
    kill,      // the process ends in a call that changes a file other than the echo file
    interrupt, // every call of a kind that restarts fails once with EINTR
    shorten    // no call reads or writes more than `maximumBytes`
};
struct Fault {
    Way way = Way::none;
    const Kind* kind = nullptr;
    int error = 0;     // errno
    int countdown = 1; // number of calls up to the one that fails
    std::size_t maximumBytes = 0;
    std::string only{}; // if not empty, calls fail for files with this part in their path

    // Results
    bool met = false;       // the call was reached
    std::string path{};     // file of the call
    bool echoBegun = false; // the echo file was written before the call
};

// Runs with this fault and sets its results. The answer to the prompt is "t".
runs::Ran run(const std::vector<const char*>& arguments, Fault& with);

} // namespace faulty_calls
