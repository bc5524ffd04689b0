#pragma once

#include "meshrake/model/domain_options.hpp"

#include <string>
#include <string_view>

// Functions of the programs that print a page of docs/.
namespace page {

// Returns `text` in backquotes, or an empty text unchanged.
std::string code(std::string_view text);

// Returns the tags of the domains, separated by commas: "all" for the complete set, "all but ..."
// if one is missing.
std::string domainList(model::DomainSet domains);

// The main() of a program that prints `text`, or with "--check FILE" compares it with that file.
// Returns 0, 1 with a message if the file differs or the output fails, or 2 on a usage error.
int printOrCheck(int argc, char** argv, const std::string& text);

} // namespace page
