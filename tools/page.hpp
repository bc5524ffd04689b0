#pragma once

#include "meshrake/model/domain_options.hpp"

#include <string>
#include <string_view>

// What the programs that print a page of docs/ share.
namespace page {

// `text` as code, nothing for an empty text.
std::string code(std::string_view text);

// The tags of the domains, with commas between them; "all" and "all but ..." for most of them.
std::string domainList(model::DomainSet domains);

// main() of a program that prints `text`, or with "--check FILE" compares it with that file.
// Returns 0, or 1 and a message when the file differs or the output fails.
int printOrCheck(int argc, char** argv, const std::string& text);

} // namespace page
