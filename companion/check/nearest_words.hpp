#pragma once

#include <span>
#include <string>
#include <string_view>

namespace check {

// Returns the number of characters to insert, remove, replace or exchange with their neighbour to
// turn one text into the other (the restricted Damerau-Levenshtein distance).
std::size_t editDistance(std::string_view a, std::string_view b);

// Returns the nearest text of a list, or an empty text if it differs in more than a third of its
// characters.
std::string nearest(std::string_view text, std::span<const std::string> list);

} // namespace check
