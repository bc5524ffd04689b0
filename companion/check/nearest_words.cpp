#include "companion/check/nearest_words.hpp"

#include <algorithm>
#include <vector>

namespace check {

std::size_t editDistance(std::string_view a, std::string_view b) {
    // Rows i - 2, i - 1 and i of the table of distances between the beginnings of the texts.
    std::vector<std::size_t> before(b.size() + 1), last(b.size() + 1), row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j) row[j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::swap(before, last);
        std::swap(last, row);
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t replaced = last[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, replaced});
            const bool exchanged = i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
            if (exchanged) row[j] = std::min(row[j], before[j - 2] + 1);
        }
    }
    return row[b.size()];
}

std::string nearest(std::string_view text, std::span<const std::string> list) {
    std::string best;
    std::size_t least = text.size();
    for (const std::string& candidate : list) {
        const std::size_t distance = editDistance(text, candidate);
        if (distance >= least || 3 * distance > candidate.size()) continue;
        least = distance;
        best = candidate;
    }
    return best;
}

} // namespace check
