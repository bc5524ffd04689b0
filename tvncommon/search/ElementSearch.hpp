#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

// Finds the element of a layered mesh that holds a point, and interpolates values there. The mesh
// is a stack of the same plan mesh of prisms with 6 or blocks with 8 nodes: the element of layer k
// over plan element e has number e + (k - 1) * planElementCount, and the first half of an element's
// nodes is its bottom face. Elements, nodes and layers count from 1; element 0 stands for none.
// Coordinates and values are arrays over the nodes, in whatever units; an element with a node
// outside of them holds no point.
//
// The module serves one mesh at a time. It reports what is wrong to the error callback, which ends
// the run; behind a callback that returns, the functions return 0 or the value they have.
namespace ElementSearch {

using Callback = std::function<void(std::string_view message)>;

// Forgets mesh, callbacks and settings.
void reset();

// The arrays must outlive the search. Any `nodesPerElement` but 6 and 8 ends the run.
void initElementSearch(std::int32_t elementCount, std::int32_t planElementCount,
                       std::int32_t nodesPerElement, std::int32_t sheetCount,
                       std::span<const std::int32_t> elementNodes, std::span<const double> nodeX,
                       std::span<const double> nodeY, std::span<const double> nodeZ);

void setErrorCallback(Callback callback);
void setWarnCallback(Callback callback);

// Whether a point outside is moved to the nearest element or vertex, which is an error otherwise,
// and whether the warning callback hears of it. At first it is not, and it does.
void setNearestFallback(bool on);
void setWarnOnFallback(bool on);

// Plan element over or under the place; the second form leaves it at 0 for a place outside.
std::int32_t findElement2D(double x, double y);
std::int32_t findElement2DUnchecked(double x, double y);

// Element that holds the point, of two layers the lower one. `hint` is a plan element to try first.
std::int32_t findElement3D(double x, double y, double z, std::optional<std::int32_t> hint = {});

// Element of this layer at the place.
std::int32_t findElementByLayer(double x, double y, std::int32_t layer);

// Element with the nearest centroid, the first of equals, by a walk through all of them.
std::int32_t findNearestElement2D(double x, double y);
std::int32_t findNearestElement3D(double x, double y, double z);

// Inside tests. Surfaces belong to an element in space; of the edges in plan only those of one
// winding do.
bool pointInElement2D(std::int32_t element, double x, double y);
bool pointInElement3D(std::int32_t element, double x, double y, double z);
bool pointInTriangle2D(std::span<const double, 3> xs, std::span<const double, 3> ys, double x,
                       double y);
bool pointInQuad2D(std::span<const double, 4> xs, std::span<const double, 4> ys, double x,
                   double y);

// Interpolation in an element between its bottom and its top, on one of these faces, and in plan,
// by the values at its nodes. Quadrilaterals are cut from their first to their third node. The
// second form of each finds the element first.
double interpElement3DIndex(std::int32_t element, double x, double y, double z,
                            std::span<const double> values);
double interpElementTopIndex(std::int32_t element, double x, double y,
                             std::span<const double> values);
double interpElementBottomIndex(std::int32_t element, double x, double y,
                                std::span<const double> values);
double interpElement2DIndex(std::int32_t element, double x, double y,
                            std::span<const double> values);
double interpElement3DNoIndex(double x, double y, double z, std::span<const double> values);
double interpElementTopNoIndex(double x, double y, std::span<const double> values);
double interpElementBottomNoIndex(double x, double y, std::span<const double> values);
double interpElement2DNoIndex(double x, double y, std::span<const double> values);

// The same by corners and their values.
double interpTriangle(std::span<const double, 3> xs, std::span<const double, 3> ys,
                      std::span<const double, 3> values, double x, double y);
double interpQuad(std::span<const double, 4> xs, std::span<const double, 4> ys,
                  std::span<const double, 4> values, double x, double y);

// Weights of the corners of a triangle at a place.
std::array<double, 3> barycentricCoords(std::span<const double, 3> xs,
                                        std::span<const double, 3> ys, double x, double y);

// Coordinates of an element's nodes, and of those of its bottom face, into arrays of that size.
void elementCoords3D(std::int32_t element, std::span<double> xs, std::span<double> ys,
                     std::span<double> zs);
void elementCoords2D(std::int32_t element, std::span<double> xs, std::span<double> ys);

// Mean place of an element's nodes, of those of a face, and in plan.
std::array<double, 3> elementCentroid3D(std::int32_t element);
std::array<double, 3> elementCentroidTop(std::int32_t element);
std::array<double, 3> elementCentroidBottom(std::int32_t element);
std::array<double, 2> elementCentroid2D(std::int32_t element);

// Least x, y and z of an element's nodes, then the largest.
std::array<double, 6> elementAABB(std::int32_t element);

// Coordinates for a message.
std::string pointToString2D(double x, double y);
std::string pointToString3D(double x, double y, double z);

} // namespace ElementSearch
