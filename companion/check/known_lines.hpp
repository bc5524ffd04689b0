#pragma once

#include "meshrake/model/domain_options.hpp"

#include <string>
#include <string_view>
#include <vector>

// The lines that the reader of the control file recognizes, from the tables of instructions and
// options. All are in lower case.
namespace check::known_lines {

// Instructions of the first section, and lines of a block: instructions and options. `tag` is that
// of the domain.
const std::vector<std::string>& ofFirstSection();
const std::vector<std::string>& ofBlock(std::string_view tag);

// Lines after the first section and outside of blocks: instructions, and the first lines of blocks.
const std::vector<std::string>& ofRest();

// Returns the first line of the block of a domain.
std::string blockLine(std::string_view tag);

// Returns the tag of the domain whose block the line begins, empty for any other line.
std::string_view blockTag(std::string_view line);

// True for a line that begins or ends a section or is an instruction of one.
bool isKnown(std::string_view line);

// Returns a text about the section in which the line is an instruction, or an empty text.
std::string properSection(std::string_view line);

} // namespace check::known_lines
