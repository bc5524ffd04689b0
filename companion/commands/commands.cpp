#include "companion/commands/commands.hpp"

#include <array>

namespace commands {

namespace {

constexpr std::array<Command, 4> table{{
    {"check", "Report what a run would do, and what would go wrong", addCheck},
    {"print", "Print a binary data set as text", addPrint},
    {"series", "Write the values of nodes and elements at all output times as CSV", addSeries},
    {"xdmf", "Write an index of binary data sets, with which a viewer shows all output times",
     addXdmf},
}};

} // namespace

std::span<const Command> all() {
    return table;
}

} // namespace commands
