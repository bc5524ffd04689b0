#include "companion/commands/commands.hpp"

#include <array>

namespace commands {

namespace {

constexpr std::array<Command, 1> table{{
    {"print", "Print a binary data set as text", addPrint},
}};

} // namespace

std::span<const Command> all() {
    return table;
}

} // namespace commands
