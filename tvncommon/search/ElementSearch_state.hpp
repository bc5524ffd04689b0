#pragma once

#include "tvncommon/diagnostics/error.hpp"
#include "tvncommon/search/ElementSearch.hpp"
#include "tvncommon/search/FixedResolutionGrid.hpp"

#include <cstddef>

// What the parts of the element search share.
namespace ElementSearch {

struct State {
    std::int32_t elementCount = 0;
    std::int32_t planElementCount = 0; // elements of one layer
    std::int32_t nodesPerElement = 0;
    std::int32_t sheetCount = 0; // the layers are one fewer
    std::span<const std::int32_t> elementNodes;
    std::span<const double> nodeX, nodeY, nodeZ;
    FixedResolutionGrid::FixedResGrid grid; // over the plan elements
    bool nearestFallback = false;
    bool warnOnFallback = true;
    Callback errorCallback = error::fatalError;
    Callback warnCallback = error::warningMsg;
};

extern State state;

// A face of an element, from the first of its nodes on.
struct Face {
    std::size_t first, count;
};
Face bottomFace();
Face topFace();
Face allNodes();

// What an array holds for a node of an element, counted from 0; no number where there is none.
double atNode(std::span<const double> array, std::int32_t element, std::size_t k);

// Tells the error callback, or the warning callback where a point has been moved, both with
// `place`, a line that tells which.
void report(std::string_view message, const std::string& place);
void reportFallback(std::string_view message, const std::string& place);

} // namespace ElementSearch
