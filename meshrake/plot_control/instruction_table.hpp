#pragma once

#include "meshrake/model/domain.hpp"

#include <span>
#include <string>
#include <string_view>

// The instructions of the control file, other than the lines "no <domain> ..." of
// `model::optionTable`. The reader, the template and docs/instructions.md use the same rows.
namespace plot_control {

enum class Section {
    first,       // before the first "end": for the whole run
    domainBlock, // in the block of one of the row's domains
    afterFirst   // anywhere after the first section, inside or outside of blocks
};

struct InstructionRow {
    std::string_view words; // the whole line, lower case; "<domain>" is the tag of the domain
    Section section = Section::first;
    model::DomainSet domains = 0; // Section::domainBlock: where it is recognized

    // Reads the values from the next lines and sets what is requested. `domain` is null in the
    // first section, the domain of the block in a block, otherwise `addition`. A value that cannot
    // be read ends the run.
    void (*execute)(model::Domain* domain) = nullptr;

    // Template
    bool isActive = false;            // the line is not a comment
    std::string_view exampleValues{}; // lines after it, always comments
    // Ending of the name of a file of observations. Without that file and the first heads of pm the
    // template omits the instruction. Empty: never omitted.
    std::string_view observations{};

    // Documentation
    std::string_view values{}; // what the value lines contain
    std::string_view effect{}; // a sentence
};

// Returns the rows in the order of the template.
std::span<const InstructionRow> instructionTable();

// Returns the line of the control file, for a domain with this tag.
std::string instructionLine(const InstructionRow& row, std::string_view tag);

} // namespace plot_control
