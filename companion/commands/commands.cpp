#include "companion/commands/commands.hpp"

#include <array>

namespace commands {

namespace {

constexpr std::array<Command, 2> table{{
    {"print", "Print a binary data set as text", addPrint},
    {"xdmf", "Write an index of binary data sets, with which a viewer shows all output times",
     addXdmf},
}};

} // namespace

std::span<const Command> all() {
    return table;
}

} // namespace commands
