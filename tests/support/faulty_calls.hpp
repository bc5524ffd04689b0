#pragma once

#include "tests/support/runs.hpp"

#include <span>

// Runs in this process in which one of the system's calls does not do what it should.
namespace faulty_calls {

inline const std::string echoFile = "to.meshrake.eco";

// An entry of the table of system calls.
enum class Effect { none, change, growth }; // upon files
struct Kind {
    const char* name;
    Effect effect;
    bool restarts;           // fails with EINTR too
    std::vector<int> errors; // that it fails with
    void (*wrap)(system_calls::Table& table, const Kind& kind);
};
std::span<const Kind> kinds(); // allocation is the last

enum class Way {
    none,
    once,
    lasting,   // from that call on nothing in a file grows
    kill,      // the process ends in a call that changes a file other than the echo file
    interrupt, // every call of a kind that restarts fails once with EINTR
    shorten    // no call reads or writes more than `most` bytes
};
struct Fault {
    Way way = Way::none;
    const Kind* kind = nullptr;
    int error = 0;
    int countdown = 0; // calls up to the one that fails
    std::size_t most = 0;
    bool met = false;
    std::string path{};     // of the file that the call was for
    bool echoBegun = false; // had been written by then
};

// Runs with this fault and writes into it what has become of it. The answer to the prompt is "t".
runs::Ran run(const std::vector<const char*>& arguments, Fault& with);

} // namespace faulty_calls
