#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

// Finds the element of a layered mesh that contains a point, and interpolates values at the point.
// All layers have the same plan mesh, of prisms with 6 or blocks with 8 nodes. The element of layer
// k over plan element e has number e + (k - 1) * planElementCount, and the first half of an
// element's nodes is its bottom face. Elements, nodes and layers count from 1; element 0 means
// none. Coordinates and values are arrays over the nodes, in any units. An element with a node
// outside the arrays contains no point.
//
// The module has one mesh at a time. Errors are reported to the error callback, which by default
// ends the run. If a callback returns, the functions return 0 or the value at the nearest position.
namespace ElementSearch {

using Callback = std::function<void(std::string_view message)>;

// Restores the state of a program start: no mesh, default callbacks and settings.
void reset();

// Sets the mesh. The arrays must outlive the search. A `nodesPerElement` other than 6 and 8 ends
// the run.
void initElementSearch(std::int32_t elementCount, std::int32_t planElementCount,
                       std::int32_t nodesPerElement, std::int32_t sheetCount,
                       std::span<const std::int32_t> elementNodes, std::span<const double> nodeX,
                       std::span<const double> nodeY, std::span<const double> nodeZ);

void setErrorCallback(Callback callback);
void setWarnCallback(Callback callback);

// Set whether the nearest element or corner is used for a point outside (default: no, it is an
// error), and whether this is reported to the warning callback (default: yes).
void setNearestFallback(bool on);
void setWarnOnFallback(bool on);

// Return the plan element that contains (x, y). For a point outside, the second function returns 0
// without an error or warning.
std::int32_t findElement2D(double x, double y);
std::int32_t findElement2DUnchecked(double x, double y);

// Returns the element that contains the point. On the face between two layers it is the lower one.
// `hint` is a plan element that is tested first.
std::int32_t findElement3D(double x, double y, double z, std::optional<std::int32_t> hint = {});

// Returns the element of this layer that contains (x, y).
std::int32_t findElementByLayer(double x, double y, std::int32_t layer);

// Return the element with the nearest centroid, the first among equals. They test all elements.
std::int32_t findNearestElement2D(double x, double y);
std::int32_t findNearestElement3D(double x, double y, double z);

// Test whether a point is inside. The bottom and top face belong to an element. A point on an edge
// in plan is in elements of one direction of corners only, see FixedResolutionGrid::pointInTri.
bool pointInElement2D(std::int32_t element, double x, double y);
bool pointInElement3D(std::int32_t element, double x, double y, double z);
bool pointInTriangle2D(std::span<const double, 3> xs, std::span<const double, 3> ys, double x,
                       double y);
bool pointInQuad2D(std::span<const double, 4> xs, std::span<const double, 4> ys, double x,
                   double y);

// Interpolate node values linearly: in an element between its bottom and top face, on one of these
// faces, and in plan. Quadrilaterals are divided from their first to their third node. The
// functions without an index find the element first.
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

// The same from the corners and their values.
double interpTriangle(std::span<const double, 3> xs, std::span<const double, 3> ys,
                      std::span<const double, 3> values, double x, double y);
double interpQuad(std::span<const double, 4> xs, std::span<const double, 4> ys,
                  std::span<const double, 4> values, double x, double y);

// Returns the weights of the corners of a triangle at a point.
std::array<double, 3> barycentricCoords(std::span<const double, 3> xs,
                                        std::span<const double, 3> ys, double x, double y);

// Store the coordinates of an element's nodes, or of those of its bottom face, in arrays of that
// size.
void elementCoords3D(std::int32_t element, std::span<double> xs, std::span<double> ys,
                     std::span<double> zs);
void elementCoords2D(std::int32_t element, std::span<double> xs, std::span<double> ys);

// Return the mean of the coordinates of an element's nodes, of those of a face, and in plan.
std::array<double, 3> elementCentroid3D(std::int32_t element);
std::array<double, 3> elementCentroidTop(std::int32_t element);
std::array<double, 3> elementCentroidBottom(std::int32_t element);
std::array<double, 2> elementCentroid2D(std::int32_t element);

// Returns the least x, y and z of an element's nodes, then the greatest.
std::array<double, 6> elementAABB(std::int32_t element);

// Return coordinates as text, for messages.
std::string pointToString2D(double x, double y);
std::string pointToString3D(double x, double y, double z);

} // namespace ElementSearch
