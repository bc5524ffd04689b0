#include "meshrake/observation_compare/node_search.hpp"

#include "meshrake/model/run_state.hpp"
#include "tvncommon/diagnostics/ArrayHelpers.hpp"
#include "tvncommon/text/number_formats.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

namespace observation_compare {

using box_tree::Box;
using box_tree::groupSize;
using box_tree::Point;
using model::Domain;
using model::run;

namespace {

constexpr const char* arrayName = "node search arrays";
constexpr double maximumDistance = 1e20;
constexpr double lowestTop = -1e10;
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

struct Group {
    std::array<std::array<double, groupSize>, 3> xyz; // by axis
    std::array<std::int32_t, groupSize> node;         // from 1
};

struct Index {
    std::vector<Group> groups;
    box_tree::Tree tree;
};

std::array<std::span<const double>, 3> axesOf(const NodeSet& nodes) {
    const auto count = static_cast<std::size_t>(nodes.count);
    return {std::span(nodes.domain.x).first(count), std::span(nodes.domain.y).first(count),
            std::span(nodes.domain.z).first(count)};
}

// Stores coordinates axis by axis, so that one instruction processes several nodes. Unused entries
// are NaN: like infinite coordinates, they are not near any point.
void fillGroup(const NodeSet& nodes, std::span<const std::int32_t> members, Group& group,
               Box& box) {
    for (std::size_t k = 0; k < members.size(); ++k) group.node[k] = members[k] + 1;
    const auto axes = axesOf(nodes);
    for (std::size_t a = 0; a < 3; ++a) {
        group.xyz[a].fill(notANumber);
        const bool flat = a == 2 && nodes.inPlan;
        for (std::size_t k = 0; k < members.size(); ++k)
            group.xyz[a][k] = flat ? 0 : axes[a][static_cast<std::size_t>(members[k])];
        for (const double v : group.xyz[a]) {
            if (v < box.low[a]) box.low[a] = v;
            if (v > box.high[a]) box.high[a] = v;
        }
    }
}

Index buildIndex(const NodeSet& nodes) {
    const auto [x, y, z] = axesOf(nodes);
    std::vector<double> flat;
    if (nodes.inPlan) ArrayHelpers::allocateArray(flat, nodes.count, arrayName);
    const std::vector<std::int32_t> order =
        box_tree::spatialOrder(x, y, nodes.inPlan ? std::span<const double>(flat) : z);

    Index index;
    const auto groupCount = static_cast<std::int64_t>(box_tree::groupCount(order.size()));
    ArrayHelpers::allocateArray(index.groups, groupCount, arrayName);
    std::vector<Box> boxes;
    ArrayHelpers::allocateArray(boxes, groupCount, arrayName);
    for (std::size_t g = 0; g < boxes.size(); ++g) {
        const std::size_t first = g * groupSize;
        fillGroup(nodes, std::span(order).subspan(first, std::min(groupSize, order.size() - first)),
                  index.groups[g], boxes[g]);
    }
    box_tree::build(index.tree, boxes, {});
    return index;
}

// Returns a bound for squares whose root can round to the same distance as that of `square`. Such
// roots differ by at most 2^-52 of the distance, so their squares by 2^-51 = 4.4e-16 of `square`.
// The least normal number covers denormal squares.
double boundOf(double square) {
    return square * (1 + 1e-15) + std::numeric_limits<double>::min();
}

// The nearest node so far. Of nodes whose distances round to the same number, the lowest is used.
struct Best {
    double distance = maximumDistance;
    std::int32_t node = 0;
    double bound = boundOf(maximumDistance * maximumDistance); // squares above it need no root
};

void searchGroup(const Group& group, const Point& p, Best& best) {
    std::array<double, groupSize> square;
    for (std::size_t k = 0; k < groupSize; ++k) {
        const double dx = group.xyz[0][k] - p[0];
        const double dy = group.xyz[1][k] - p[1];
        const double dz = group.xyz[2][k] - p[2];
        square[k] = dx * dx + dy * dy + dz * dz;
    }
    for (std::size_t k = 0; k < groupSize; ++k) {
        if (!(square[k] <= best.bound)) continue;
        const double distance = std::sqrt(square[k]);
        const bool earlier = distance == best.distance && group.node[k] < best.node;
        if (distance < best.distance || earlier)
            best = {distance, group.node[k], boundOf(square[k])};
    }
}

// Returns the node nearest to `p`. `hint` is a node that may be near, or 0: its distance limits the
// search from the start.
std::int32_t nearest(const NodeSet& nodes, const Index& index, const Point& p, std::int32_t hint) {
    if (!std::isfinite(p[0]) || !std::isfinite(p[1]) || !std::isfinite(p[2])) return 0;
    Best best;
    if (hint > 0) {
        const Point at = position(nodes.domain, hint);
        const double dx = at[0] - p[0];
        const double dy = at[1] - p[1];
        const double dz = nodes.inPlan ? 0 : at[2] - p[2];
        best.bound = std::min(best.bound, boundOf(dx * dx + dy * dy + dz * dz));
    }
    box_tree::Search search;
    box_tree::begin(search, index.tree, p);
    for (std::size_t group; box_tree::nextNear(search, best.bound, group);)
        searchGroup(index.groups[group], p, best);
    return best.node;
}

constexpr std::ptrdiff_t labelWidth = 14;
constexpr int fieldWidth = 17;
constexpr int decimals = 5;

constexpr std::int64_t lineBytes = labelWidth + 3 * fieldWidth + 1;

char* writeLine(std::string_view label, std::span<const double> values, char* out) {
    char* const fields = out + labelWidth;
    std::fill(std::copy(label.begin(), label.end(), out), fields, ' ');
    out = fields;
    for (const double value : values)
        out = number_formats::writeFixedField(value, fieldWidth, decimals, out);
    *out = '\n';
    return out + 1;
}

// `axes` is 3 for a search in space, 2 for one in plan.
void echoSearch(plot_data::TextBlock& echo, const Point& target, const Point& found,
                std::size_t axes) {
    const bool inSpace = axes == 3;
    const Point delta{found[0] - target[0], found[1] - target[1], found[2] - target[2]};
    ensureSpace(echo, 2 + 3 * lineBytes);
    char* out = std::fill_n(echo.end, 2, '\n');
    out = writeLine(inSpace ? "Target x, y, z" : "Target x, y", std::span(target).first(axes), out);
    out = writeLine("Found x, y, z", found, out);
    echo.end =
        writeLine(inSpace ? "Delta x, y, z" : "Delta x, y", std::span(delta).first(axes), out);
}

} // namespace

std::vector<std::int32_t> nearestNodes(const NodeSet& nodes, std::span<const double> x,
                                       std::span<const double> y, std::span<const double> z) {
    const Index index = buildIndex(nodes);
    std::vector<std::int32_t> found;
    ArrayHelpers::allocateArray(found, static_cast<std::int64_t>(x.size()), arrayName);
    // In spatial order, the search of a point finds its part of the tree in the cache, and the node
    // of the previous point is a good hint. A coarse order is enough.
    constexpr std::size_t runLength = 256;
    std::int32_t hint = 0;
    for (const std::int32_t point : box_tree::spatialOrder(x, y, z, runLength)) {
        const auto i = static_cast<std::size_t>(point);
        found[i] = nearest(nodes, index, {x[i], y[i], nodes.inPlan ? 0 : z[i]}, hint);
        if (found[i] > 0) hint = found[i];
    }
    return found;
}

std::int32_t sheetNodes(const Domain& domain) {
    return run.sheetCount > 0 ? domain.nodeCount / run.sheetCount : 0;
}

std::vector<std::int32_t> columnTops(const Domain& domain) {
    const auto perSheet = static_cast<std::size_t>(sheetNodes(domain));
    std::vector<std::int32_t> tops;
    ArrayHelpers::allocateArray(tops, sheetNodes(domain), arrayName);
    std::size_t node = 0;
    for (std::int32_t sheet = 0; sheet < run.sheetCount; ++sheet)
        for (std::size_t i = 0; i < perSheet; ++i, ++node) {
            const double top =
                tops[i] > 0 ? domain.z[static_cast<std::size_t>(tops[i] - 1)] : lowestTop;
            if (domain.z[node] > top) tops[i] = static_cast<std::int32_t>(node + 1);
        }
    return tops;
}

void find_node(const Point& target, std::int32_t found, std::int32_t& node, const Domain& domain,
               plot_data::TextBlock& echo) {
    if (found > 0) node = found;
    echoSearch(echo, target, position(domain, node), 3);
}

void find_top_surface_node_from_xy(const Point& target, std::int32_t found, std::int32_t& node,
                                   const Domain& domain, plot_data::TextBlock& echo) {
    if (found > 0) node = found;
    echoSearch(echo, target, position(domain, node), 2);
}

Point position(const Domain& domain, std::int32_t node) {
    if (node < 1) return {0, 0, 0};
    const auto i = static_cast<std::size_t>(node - 1);
    return {domain.x[i], domain.y[i], domain.z[i]};
}

} // namespace observation_compare
