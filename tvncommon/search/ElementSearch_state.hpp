#pragma once

#include "tvncommon/diagnostics/error.hpp"
#include "tvncommon/search/ElementSearch.hpp"
#include "tvncommon/search/FixedResolutionGrid.hpp"

#include <cstddef>

// State that the files of the element search share.
namespace ElementSearch {

struct State {
    std::int32_t elementCount = 0;
    std::int32_t planElementCount = 0; // elements of one layer
    std::int32_t nodesPerElement = 0;
    std::int32_t sheetCount = 0; // one more than layers of elements
    std::span<const std::int32_t> elementNodes;
    std::span<const double> nodeX, nodeY, nodeZ;
    FixedResolutionGrid::FixedResGrid grid; // over the plan elements
    bool nearestFallback = false;
    bool warnOnFallback = true;
    Callback errorCallback = error::fatalError;
    Callback warnCallback = error::warningMsg;
};

extern State state;

// A face of an element: its first node, from 0, and the number of its nodes.
struct Face {
    std::size_t first, count;
};
Face bottomFace();
Face topFace();
Face allNodes();

// Returns the entry of an array for node `k` (from 0) of an element, or NaN if there is none.
double atNode(std::span<const double> array, std::int32_t element, std::size_t k);

// Call the error callback, or the warning callback if a nearest element or corner is used. `at` is
// a line with the point or layer.
void report(std::string_view message, const std::string& at);
void reportFallback(std::string_view message, const std::string& at);

} // namespace ElementSearch
