#include "tvncommon/search/ElementSearch.hpp"

#include "tvncommon/search/ElementSearch_state.hpp"
#include "tvncommon/text/StringHelpers.hpp"

#include <algorithm>
#include <limits>
#include <utility>

namespace ElementSearch {

State state;

namespace {

std::string point(double x, double y) {
    return "point: " + pointToString2D(x, y);
}

std::string point(double x, double y, double z) {
    return "point: " + pointToString3D(x, y, z);
}

std::int32_t layerCount() {
    return state.sheetCount - 1;
}

std::int32_t elementOfLayer(std::int32_t planElement, std::int32_t layer) {
    return planElement + (layer - 1) * state.planElementCount;
}

// Reports a point that no element contains, and returns `nearest`, or 0 after an error.
std::int32_t elementOutside(const std::string& what, const std::string& at, bool useNearest,
                            std::int32_t nearest) {
    if (!useNearest) {
        report(what, at);
        return 0;
    }
    reportFallback(what + ": using nearest element", at);
    return nearest;
}

template<class Distance2>
std::int32_t nearestOf(std::int32_t count, const Distance2& distance2) {
    std::int32_t nearest = 0;
    double best = std::numeric_limits<double>::max();
    for (std::int32_t e = 1; e <= count; ++e) {
        const double d = distance2(e);
        if (!(d < best)) continue;
        best = d;
        nearest = e;
    }
    return nearest;
}

double square(double value) {
    return value * value;
}

std::int32_t planElementAt(double x, double y, std::optional<std::int32_t> hint) {
    const bool inMesh = hint && *hint >= 1 && *hint <= state.planElementCount;
    return inMesh && pointInElement2D(*hint, x, y) ? *hint : findElement2DUnchecked(x, y);
}

} // namespace

void reset() {
    state = {};
}

void initElementSearch(std::int32_t elementCount, std::int32_t planElementCount,
                       std::int32_t nodesPerElement, std::int32_t sheetCount,
                       std::span<const std::int32_t> elementNodes, std::span<const double> nodeX,
                       std::span<const double> nodeY, std::span<const double> nodeZ) {
    state.elementCount = elementCount;
    state.planElementCount = planElementCount;
    state.nodesPerElement = nodesPerElement;
    state.sheetCount = sheetCount;
    state.elementNodes = elementNodes;
    state.nodeX = nodeX;
    state.nodeY = nodeY;
    state.nodeZ = nodeZ;
    constexpr std::int32_t gridCells = 1000;
    state.grid.init(gridCells, gridCells, planElementCount, nodesPerElement, nodeX, nodeY,
                    elementNodes);
}

void setErrorCallback(Callback callback) {
    state.errorCallback = std::move(callback);
}

void setWarnCallback(Callback callback) {
    state.warnCallback = std::move(callback);
}

void setNearestFallback(bool on) {
    state.nearestFallback = on;
}

void setWarnOnFallback(bool on) {
    state.warnOnFallback = on;
}

void report(std::string_view message, const std::string& at) {
    state.errorCallback(std::string(message) + "\n" + at);
}

void reportFallback(std::string_view message, const std::string& at) {
    if (state.warnOnFallback) state.warnCallback(std::string(message) + "\n" + at);
}

std::int32_t findElement2D(double x, double y) {
    const std::int32_t element = findElement2DUnchecked(x, y);
    if (element != 0) return element;
    const std::int32_t nearest = state.nearestFallback ? findNearestElement2D(x, y) : 0;
    return elementOutside("findElement2D: point outside mesh", point(x, y), state.nearestFallback,
                          nearest);
}

std::int32_t findElement2DUnchecked(double x, double y) {
    return state.grid.findElement(x, y);
}

std::int32_t findElement3D(double x, double y, double z, std::optional<std::int32_t> hint) {
    const std::string name = "findElement3D: ";
    const bool useNearest = state.nearestFallback;
    const std::int32_t plan = planElementAt(x, y, hint);
    if (plan == 0) {
        const std::int32_t nearest = useNearest ? findNearestElement3D(x, y, z) : 0;
        return elementOutside(name + "point outside mesh", point(x, y, z), useNearest, nearest);
    }
    double below = interpElementBottomIndex(plan, x, y, state.nodeZ);
    if (z < below)
        return elementOutside(name + "point below mesh", point(x, y, z), useNearest, plan);
    for (std::int32_t layer = 1; layer <= layerCount(); ++layer) {
        const std::int32_t element = elementOfLayer(plan, layer);
        const double top = interpElementTopIndex(element, x, y, state.nodeZ);
        if (below <= z && z <= top) return element;
        below = top;
    }
    return elementOutside(name + "point above mesh", point(x, y, z), useNearest,
                          elementOfLayer(plan, std::max(layerCount(), 1)));
}

std::int32_t findElementByLayer(double x, double y, std::int32_t layer) {
    const std::string name = "findElementByLayer: ";
    const std::int32_t inRange = std::max(std::min(layer, layerCount()), 1);
    if (layer < 1 || layer > layerCount()) {
        const std::string range =
            "layer: " + std::to_string(layer) + ", expected: 1," + std::to_string(layerCount());
        if (!state.nearestFallback) {
            report(name + "layer outside range", range);
            return 0;
        }
        reportFallback(name + "layer outside range: using nearest layer", range);
    }
    std::int32_t plan = findElement2DUnchecked(x, y);
    if (plan == 0) {
        const std::int32_t nearest = state.nearestFallback ? findNearestElement2D(x, y) : 0;
        plan = elementOutside(name + "point outside mesh", point(x, y), state.nearestFallback,
                              nearest);
    }
    return plan == 0 ? 0 : elementOfLayer(plan, inRange);
}

std::int32_t findNearestElement2D(double x, double y) {
    return nearestOf(state.planElementCount, [&](std::int32_t element) {
        const auto [cx, cy] = elementCentroid2D(element);
        return square(cx - x) + square(cy - y);
    });
}

std::int32_t findNearestElement3D(double x, double y, double z) {
    return nearestOf(state.elementCount, [&](std::int32_t element) {
        const auto [cx, cy, cz] = elementCentroid3D(element);
        return square(cx - x) + square(cy - y) + square(cz - z);
    });
}

std::string pointToString2D(double x, double y) {
    return StringHelpers::toString_r8(x) + ", " + StringHelpers::toString_r8(y);
}

std::string pointToString3D(double x, double y, double z) {
    return pointToString2D(x, y) + ", " + StringHelpers::toString_r8(z);
}

} // namespace ElementSearch
