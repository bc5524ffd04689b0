#include "tvncommon/search/ElementSearch.hpp"

#include "tvncommon/search/ElementSearch_state.hpp"

#include <algorithm>
#include <limits>

namespace ElementSearch {

namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr std::array<std::size_t, 3> firstHalf{0, 1, 2}, secondHalf{0, 2, 3};

// Returns the entry of an array for node `k` (from 0) of an element, or null if there is none.
const double* entryOf(std::span<const double> array, std::int32_t element, std::size_t k) {
    if (element < 1 || element > state.elementCount) return nullptr;
    const std::size_t slot = (static_cast<std::size_t>(element) - 1) * allNodes().count + k;
    if (slot >= state.elementNodes.size()) return nullptr;
    const auto node = static_cast<std::size_t>(state.elementNodes[slot]) - 1;
    return node < array.size() ? &array[node] : nullptr;
}

// Corners of a face, three or four, and the values of an array there.
struct Corners {
    std::array<double, 4> xs{}, ys{}, values{};
};

Corners cornersOf(std::int32_t element, const Face& face, std::span<const double> values) {
    Corners corners;
    for (std::size_t k = 0; k < face.count; ++k) {
        corners.xs[k] = atNode(state.nodeX, element, face.first + k);
        corners.ys[k] = atNode(state.nodeY, element, face.first + k);
        corners.values[k] = atNode(values, element, face.first + k);
    }
    return corners;
}

template<std::size_t N>
std::array<double, 3> pick(std::span<const double, N> four, const std::array<std::size_t, 3>& at) {
    return {four[at[0]], four[at[1]], four[at[2]]};
}

// Returns the value at the point, no value outside the triangle.
std::optional<double> inTriangle(const std::array<double, 3>& xs, const std::array<double, 3>& ys,
                                 const std::array<double, 3>& values, double x, double y) {
    const std::array<double, 3> weights = barycentricCoords(xs, ys, x, y);
    const double u = weights[1], v = weights[2];
    if (!(u >= 0 && v >= 0 && u + v <= 1)) return {};
    return u * (values[1] - values[0]) + v * (values[2] - values[0]) + values[0];
}

// Reports a point outside a face, and returns the value of the nearest corner, or 0 after an error.
double valueOutside(const std::string& what, std::span<const double> xs, std::span<const double> ys,
                    std::span<const double> values, double x, double y) {
    const std::string at = "point: " + pointToString2D(x, y);
    if (!state.nearestFallback) {
        report(what, at);
        return 0;
    }
    reportFallback(what + ": using value of nearest vertex", at);
    std::size_t nearest = 0;
    double best = std::numeric_limits<double>::max();
    for (std::size_t k = 0; k < xs.size(); ++k) {
        const double d = (xs[k] - x) * (xs[k] - x) + (ys[k] - y) * (ys[k] - y);
        if (!(d < best)) continue;
        best = d;
        nearest = k;
    }
    return values[nearest];
}

double interpFace(std::int32_t element, const Face& face, double x, double y,
                  std::span<const double> values) {
    if (state.nodesPerElement != 6 && state.nodesPerElement != 8) {
        state.errorCallback("interpElementBottom: expected triangular prism or block elements");
        return 0;
    }
    const Corners corners = cornersOf(element, face, values);
    const std::span xs(corners.xs), ys(corners.ys), at(corners.values);
    if (face.count == 4) return interpQuad(xs, ys, at, x, y);
    return interpTriangle(xs.first<3>(), ys.first<3>(), at.first<3>(), x, y);
}

std::array<double, 3> centroid(std::int32_t element, const Face& face) {
    std::array<double, 3> sum{};
    for (std::size_t k = face.first; k < face.first + face.count; ++k) {
        sum[0] += atNode(state.nodeX, element, k);
        sum[1] += atNode(state.nodeY, element, k);
        sum[2] += atNode(state.nodeZ, element, k);
    }
    for (double& coordinate : sum) coordinate /= static_cast<double>(face.count);
    return sum;
}

// While this exists, the nearest corner is used for points outside without a warning.
struct QuietFallback {
    bool nearestFallback = state.nearestFallback, warnOnFallback = state.warnOnFallback;
    QuietFallback() {
        state.nearestFallback = true;
        state.warnOnFallback = false;
    }
    ~QuietFallback() {
        state.nearestFallback = nearestFallback;
        state.warnOnFallback = warnOnFallback;
    }
    QuietFallback(const QuietFallback&) = delete;
    QuietFallback& operator=(const QuietFallback&) = delete;
};

} // namespace

Face allNodes() {
    return {0, static_cast<std::size_t>(std::max(state.nodesPerElement, 0))};
}

Face bottomFace() {
    return {0, allNodes().count / 2};
}

Face topFace() {
    return {allNodes().count / 2, allNodes().count / 2};
}

double atNode(std::span<const double> array, std::int32_t element, std::size_t k) {
    const double* entry = entryOf(array, element, k);
    return entry ? *entry : nan;
}

bool pointInElement2D(std::int32_t element, double x, double y) {
    const std::size_t count = std::min<std::size_t>(bottomFace().count, 4);
    const Corners corners = cornersOf(element, {0, count}, {});
    const std::span xs(corners.xs), ys(corners.ys);
    // A missing node has coordinates NaN: the test would count every point as left of its edges.
    bool known = true;
    for (std::size_t k = 0; k < count; ++k)
        known = known && entryOf(state.nodeX, element, k) && entryOf(state.nodeY, element, k);
    if (state.nodesPerElement == 6)
        return known && pointInTriangle2D(xs.first<3>(), ys.first<3>(), x, y);
    if (state.nodesPerElement == 8) return known && pointInQuad2D(xs, ys, x, y);
    state.errorCallback("pointInElement2D: expected triangular prism or block elements");
    return false;
}

bool pointInElement3D(std::int32_t element, double x, double y, double z) {
    if (!pointInElement2D(element, x, y)) return false;
    const QuietFallback quiet;
    const double bottom = interpElementBottomIndex(element, x, y, state.nodeZ);
    const double top = interpElementTopIndex(element, x, y, state.nodeZ);
    return bottom <= z && z <= top;
}

bool pointInTriangle2D(std::span<const double, 3> xs, std::span<const double, 3> ys, double x,
                       double y) {
    return FixedResolutionGrid::pointInTri({xs[0], xs[1], xs[2]}, {ys[0], ys[1], ys[2]}, x, y);
}

bool pointInQuad2D(std::span<const double, 4> xs, std::span<const double, 4> ys, double x,
                   double y) {
    using FixedResolutionGrid::pointInTri;
    return pointInTri(pick(xs, firstHalf), pick(ys, firstHalf), x, y) ||
           pointInTri(pick(xs, secondHalf), pick(ys, secondHalf), x, y);
}

double interpElement3DIndex(std::int32_t element, double x, double y, double z,
                            std::span<const double> values) {
    const double zb = interpElementBottomIndex(element, x, y, state.nodeZ);
    const double zt = interpElementTopIndex(element, x, y, state.nodeZ);
    const double vb = interpElementBottomIndex(element, x, y, values);
    const double vt = interpElementTopIndex(element, x, y, values);
    const auto outsideFaces = [&](const std::string& what, const char* moved, double value) {
        const std::string at = "point: " + pointToString3D(x, y, z);
        if (state.nearestFallback)
            reportFallback(what + moved, at);
        else
            report(what, at);
        return value;
    };
    if (z < zb)
        return outsideFaces("interpElement: point below element", ": interpolating to bottom", vb);
    if (z > zt)
        return outsideFaces("interpElement: point above element", ": interpolating to top", vt);
    return ((zt - z) * vb + (z - zb) * vt) / (zt - zb);
}

double interpElementTopIndex(std::int32_t element, double x, double y,
                             std::span<const double> values) {
    return interpFace(element, topFace(), x, y, values);
}

double interpElementBottomIndex(std::int32_t element, double x, double y,
                                std::span<const double> values) {
    return interpFace(element, bottomFace(), x, y, values);
}

double interpElement2DIndex(std::int32_t element, double x, double y,
                            std::span<const double> values) {
    return interpFace(element, bottomFace(), x, y, values);
}

double interpElement3DNoIndex(double x, double y, double z, std::span<const double> values) {
    const std::int32_t element = findElement3D(x, y, z);
    return element == 0 ? 0 : interpElement3DIndex(element, x, y, z, values);
}

double interpElementTopNoIndex(double x, double y, std::span<const double> values) {
    const std::int32_t element = findElement2D(x, y);
    return element == 0 ? 0 : interpElementTopIndex(element, x, y, values);
}

double interpElementBottomNoIndex(double x, double y, std::span<const double> values) {
    const std::int32_t element = findElement2D(x, y);
    return element == 0 ? 0 : interpElementBottomIndex(element, x, y, values);
}

double interpElement2DNoIndex(double x, double y, std::span<const double> values) {
    return interpElementBottomNoIndex(x, y, values);
}

double interpTriangle(std::span<const double, 3> xs, std::span<const double, 3> ys,
                      std::span<const double, 3> values, double x, double y) {
    const auto value = inTriangle({xs[0], xs[1], xs[2]}, {ys[0], ys[1], ys[2]},
                                  {values[0], values[1], values[2]}, x, y);
    return value ? *value
                 : valueOutside("interpTriangle: point outside triangle", xs, ys, values, x, y);
}

double interpQuad(std::span<const double, 4> xs, std::span<const double, 4> ys,
                  std::span<const double, 4> values, double x, double y) {
    for (const std::array<std::size_t, 3>& half : {firstHalf, secondHalf}) {
        const auto value = inTriangle(pick(xs, half), pick(ys, half), pick(values, half), x, y);
        if (value) return *value;
    }
    return valueOutside("interpQuad: point outside quad", xs, ys, values, x, y);
}

std::array<double, 3> barycentricCoords(std::span<const double, 3> xs,
                                        std::span<const double, 3> ys, double x, double y) {
    const double d = (xs[1] - xs[0]) * (ys[2] - ys[0]) - (ys[1] - ys[0]) * (xs[2] - xs[0]);
    const double u = ((ys[2] - ys[0]) * (x - xs[0]) - (xs[2] - xs[0]) * (y - ys[0])) / d;
    const double v = ((xs[1] - xs[0]) * (y - ys[0]) - (ys[1] - ys[0]) * (x - xs[0])) / d;
    return {1 - u - v, u, v};
}

void elementCoords3D(std::int32_t element, std::span<double> xs, std::span<double> ys,
                     std::span<double> zs) {
    for (std::size_t k = 0; k < allNodes().count; ++k) {
        xs[k] = atNode(state.nodeX, element, k);
        ys[k] = atNode(state.nodeY, element, k);
        zs[k] = atNode(state.nodeZ, element, k);
    }
}

void elementCoords2D(std::int32_t element, std::span<double> xs, std::span<double> ys) {
    for (std::size_t k = 0; k < bottomFace().count; ++k) {
        xs[k] = atNode(state.nodeX, element, k);
        ys[k] = atNode(state.nodeY, element, k);
    }
}

std::array<double, 3> elementCentroid3D(std::int32_t element) {
    return centroid(element, allNodes());
}

std::array<double, 3> elementCentroidTop(std::int32_t element) {
    return centroid(element, topFace());
}

std::array<double, 3> elementCentroidBottom(std::int32_t element) {
    return centroid(element, bottomFace());
}

std::array<double, 2> elementCentroid2D(std::int32_t element) {
    const std::array<double, 3> mean = centroid(element, allNodes());
    return {mean[0], mean[1]};
}

std::array<double, 6> elementAABB(std::int32_t element) {
    const std::array<std::span<const double>, 3> coordinates{state.nodeX, state.nodeY, state.nodeZ};
    std::array<double, 6> box{};
    for (std::size_t d = 0; d < coordinates.size(); ++d) {
        box[d] = box[d + 3] = atNode(coordinates[d], element, 0);
        for (std::size_t k = 1; k < allNodes().count; ++k) {
            box[d] = std::min(box[d], atNode(coordinates[d], element, k));
            box[d + 3] = std::max(box[d + 3], atNode(coordinates[d], element, k));
        }
    }
    return box;
}

} // namespace ElementSearch
