#include "meshrake/observation_compare/element_search.hpp"

#include "tvncommon/diagnostics/ArrayHelpers.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

namespace observation_compare {

using box_tree::Box;
using box_tree::groupSize;
using box_tree::Point;
using model::Domain;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr const char* arrayName = "element search arrays";

bool isFinite(const Point& p) {
    return std::isfinite(p[0]) && std::isfinite(p[1]) && std::isfinite(p[2]);
}

int coordinateCount(const Box& box) {
    LocalPoint unused;
    return localCoordinates(box, {}, unused);
}

// Sets bounds outside which the element cannot contain a point, with a margin for the tolerance and
// rounding of local coordinates. A direction without extent has infinite bounds. Returns false if
// such bounds are not finite numbers.
bool searchBounds(const Box& box, Box& bounds) {
    for (std::size_t a = 0; a < 3; ++a) {
        const double low = box.low[a];
        const double high = box.high[a];
        const double span = high - low;
        // |rst| <= 1 + t permits t * span / 2 on each side. 0.6 instead of 0.5 is a margin.
        constexpr double tolerance = 0.6 * (insideTolerance - 1);
        constexpr double rounding = 1e-14; // 45 times the machine epsilon
        const double slack = tolerance * span + rounding * (std::abs(low) + std::abs(high));
        bounds.low[a] = span == 0 ? -infinity : low - slack;
        bounds.high[a] = span == 0 ? infinity : high + slack;
        if (!std::isfinite(slack) || (span != 0 && !std::isfinite(high + slack - low + slack)))
            return false;
    }
    return true;
}

// Returns the local coordinates after the loop has tested the element.
LocalPoint coordinatesAt(const ElementSearch& search, const Box& box, std::int32_t element,
                         const Point& point) {
    LocalPoint rst = search.rst;
    const int own = localCoordinates(box, point, rst);
    if (own == 3) return rst;
    const auto row = std::lower_bound(
        search.partial.begin(), search.partial.end(), element,
        [](const ElementSearch::Partial& p, std::int32_t e) { return p.element < e; });
    for (auto k = static_cast<std::size_t>(own); k < 3; ++k) {
        if (row->source[k] < 0) continue;
        LocalPoint left{};
        localCoordinates(elementBox(*search.domain, static_cast<std::size_t>(row->source[k])),
                         point, left);
        rst[k] = left[k];
    }
    return rst;
}

LocalPoint coordinatesAt(const ElementSearch& search, std::int32_t element, const Point& point) {
    return coordinatesAt(search, elementBox(*search.domain, static_cast<std::size_t>(element)),
                         element, point);
}

std::int32_t loopOverAll(ElementSearch& search, const Point& point) {
    for (std::int32_t e = 0; e < search.domain->elementCount; ++e) {
        localCoordinates(elementBox(*search.domain, static_cast<std::size_t>(e)), point,
                         search.rst);
        if (isInside(search.rst)) return e + 1;
    }
    return 0;
}

// Adds elements in ascending order.
void addElement(ElementSearch& search, std::int32_t element, const Box& box,
                std::array<std::int32_t, 3>& lastSet) {
    const int own = coordinateCount(box);
    for (std::size_t k = 0; k < static_cast<std::size_t>(own); ++k) lastSet[k] = element;
    if (own < 3) search.partial.push_back({element, lastSet});
    Box bounds;
    // An element that sets nothing keeps the coordinates of the one before it, which was outside.
    // Only the first element keeps those of the last search, which may have been inside.
    if (own == 0 ? element == 0 : !searchBounds(box, bounds)) search.always.push_back(element);
}

std::vector<std::int32_t> orderOf(const std::vector<Box>& boxes) {
    std::array<std::vector<double>, 3> corner;
    for (std::size_t a = 0; a < 3; ++a) {
        ArrayHelpers::allocateArray(corner[a], static_cast<std::int64_t>(boxes.size()), arrayName);
        for (std::size_t e = 0; e < boxes.size(); ++e) corner[a][e] = boxes[e].low[a];
    }
    return box_tree::spatialOrder(corner[0], corner[1], corner[2]);
}

} // namespace

Box elementBox(const Domain& domain, std::size_t element) {
    const std::int32_t* slots = model::slotsOf(domain, element);
    const std::vector<double>* xyz[] = {&domain.x, &domain.y, &domain.z};
    Box box;
    bool first = true;
    for (std::int32_t k = 0; k < domain.nodesPerElement; ++k) {
        if (slots[k] < 1) continue;
        const auto node = static_cast<std::size_t>(slots[k] - 1);
        for (std::size_t a = 0; a < 3; ++a) {
            const double v = (*xyz[a])[node];
            if (first || v < box.low[a]) box.low[a] = v;
            if (first || v > box.high[a]) box.high[a] = v;
        }
        first = false;
    }
    if (first) box.low = box.high = {0, 0, 0};
    return box;
}

void prepare(ElementSearch& search, const Domain& domain) {
    search = {};
    search.domain = &domain;
    std::vector<Box> boxes;
    ArrayHelpers::allocateArray(boxes, domain.elementCount, arrayName);
    std::array<std::int32_t, 3> lastSet{-1, -1, -1};
    for (std::size_t e = 0; e < boxes.size(); ++e) {
        boxes[e] = elementBox(domain, e);
        addElement(search, static_cast<std::int32_t>(e), boxes[e], lastSet);
    }

    const std::vector<std::int32_t> order = orderOf(boxes);
    ArrayHelpers::allocateArray(search.items, domain.elementCount, arrayName);
    const auto groupCount = static_cast<std::int64_t>(box_tree::groupCount(order.size()));
    std::vector<Box> groups;
    ArrayHelpers::allocateArray(groups, groupCount, arrayName);
    std::vector<std::int32_t> lowest;
    ArrayHelpers::allocateArray(lowest, groupCount, arrayName);
    std::fill(lowest.begin(), lowest.end(), domain.elementCount);
    for (std::size_t i = 0; i < order.size(); ++i) {
        const Box& box = boxes[static_cast<std::size_t>(order[i])];
        search.items[i] = {box, order[i]};
        Box bounds;
        if (coordinateCount(box) == 0 || !searchBounds(box, bounds)) continue; // see `addElement`
        extend(groups[i / groupSize], bounds.low, bounds.high);
        lowest[i / groupSize] = std::min(lowest[i / groupSize], order[i]);
    }
    box_tree::build(search.tree, groups, lowest);
}

std::int32_t containingElement(ElementSearch& search, const Point& point) {
    if (!isFinite(point)) return loopOverAll(search, point);
    const std::int32_t count = search.domain->elementCount;
    std::int32_t best = count;
    LocalPoint rst = search.rst;
    const auto tryElement = [&](const Box& box, std::int32_t element) {
        if (element >= best) return;
        const LocalPoint at = coordinatesAt(search, box, element, point);
        if (!isInside(at)) return;
        best = element;
        rst = at;
    };
    for (const std::int32_t element : search.always)
        tryElement(elementBox(*search.domain, static_cast<std::size_t>(element)), element);

    box_tree::Search walk;
    box_tree::begin(walk, search.tree, point);
    for (std::size_t group; box_tree::nextContaining(walk, best, group);) {
        const std::size_t end = std::min((group + 1) * groupSize, search.items.size());
        for (std::size_t i = group * groupSize; i < end; ++i)
            tryElement(search.items[i].box, search.items[i].element);
    }
    if (best == count && count > 0) rst = coordinatesAt(search, count - 1, point);
    search.rst = rst;
    return best < count ? best + 1 : 0;
}

} // namespace observation_compare
