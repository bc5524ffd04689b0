// Prints docs/instructions.md from the tables of instructions and options, or checks that it is
// current:
//
//     print_instructions > docs/instructions.md
//     print_instructions --check docs/instructions.md

#include "meshrake/plot_control/instruction_table.hpp"
#include "tools/page.hpp"

#include <sstream>
#include <string>
#include <string_view>

namespace {

using page::code;
using plot_control::InstructionRow;
using plot_control::Section;

constexpr std::string_view introduction =
    R"(<!-- Printed by tools/print_instructions from the tables of instructions. Do not edit it here. -->
# Instructions of the control file

The instructions of `<prefix>.plot.control`. [formats.md](formats.md#control-file) describes the
file. The values of an instruction are on the lines after it. A range consists of minimum and
maximum. `<domain>` is the tag of the domain.

## First section

These instructions apply to the whole run. The section ends with a line that begins with `end`.

)";

constexpr std::string_view blocks = R"(
## Blocks

A block begins with `write <domain> domain file` and ends with a line that begins with `end`. A
domain without a block is not written. In the blocks of these domains:

)";

constexpr std::string_view anywhere = R"(
## Anywhere after the first section

)";

constexpr std::string_view options = R"(
## Lines that disable variables

In a block these lines disable variables of the domain. [variables.md](variables.md) lists the
variables with their lines. **Template** shows the domains whose block of the template contains the
line.

)";

void printInstructions(std::ostringstream& out, Section section) {
    const bool hasDomains = section == Section::domainBlock;
    out << "| Instruction | " << (hasDomains ? "Domains | " : "") << "Values | Effect |\n"
        << (hasDomains ? "|---|---|---|---|\n" : "|---|---|---|\n");
    for (const InstructionRow& row : plot_control::instructionTable()) {
        if (row.section != section) continue;
        out << "| " << code(row.words) << " | ";
        if (hasDomains) out << page::domainList(row.domains) << " | ";
        out << row.values << " | " << row.effect << " |\n";
    }
}

// In nearly all rows the line disables the option that it names. The others need a remark.
std::string remarkOn(const model::OptionRow& row) {
    if (row.cleared == model::Option::none)
        return "Not recognized: the variables cannot be disabled.";
    if (row.cleared == row.option) return "";
    for (const model::OptionRow& other : model::optionTable)
        if (other.option == row.cleared)
            return "Has the effect of " + code(model::optionLabel(other, "<domain>")) + ".";
    return "";
}

void printOptions(std::ostringstream& out) {
    out << "| Line | Template | Remark |\n|---|---|---|\n";
    for (const model::OptionRow& row : model::optionTable)
        out << "| " << code(model::optionLabel(row, "<domain>")) << " | "
            << page::domainList(row.inTemplate) << " | " << remarkOn(row) << " |\n";
}

std::string pageText() {
    std::ostringstream out;
    out << introduction;
    printInstructions(out, Section::first);
    out << blocks;
    printInstructions(out, Section::domainBlock);
    out << anywhere;
    printInstructions(out, Section::afterFirst);
    out << options;
    printOptions(out);
    return out.str();
}

} // namespace

int main(int argc, char** argv) {
    return page::printOrCheck(argc, argv, pageText());
}
