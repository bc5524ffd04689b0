#pragma once

#include "meshrake/model/domain.hpp"
#include "meshrake/observation_compare/shape_functions.hpp"
#include "tvncommon/search/box_tree.hpp"

#include <cstdint>
#include <vector>

namespace observation_compare {

// Finds the element that contains a point. The result is that of a loop which tests all elements in
// ascending order, each by the box of its nodes, and stops at the first one.
//
// The loop has one set of local coordinates for all elements and points. An element without extent
// in some direction sets only some of them, so its test also depends on coordinates that earlier
// elements have set. A `Partial` has the numbers of the elements that set them last.
struct ElementSearch {
    struct Item {
        box_tree::Box box;
        std::int32_t element; // from 0
    };
    struct Partial {
        std::int32_t element;
        std::array<std::int32_t, 3> source; // element that set each coordinate last, below 0: none
    };
    const model::Domain* domain = nullptr; // must outlive the search
    std::vector<Item> items;               // elements in the order of the tree
    box_tree::Tree tree;
    std::vector<Partial> partial;     // ascending: elements that set fewer than three coordinates
    std::vector<std::int32_t> always; // ascending: elements without useful bounds, always tested
    LocalPoint rst{};                 // local coordinates after the last search
};

// Builds the tree of the domain's elements.
void prepare(ElementSearch& search, const model::Domain& domain);

// Returns the number of the first element that contains the point, from 1, and sets `rst` to the
// local coordinates in it. Returns 0 if there is none, and sets `rst` to what the loop would leave.
std::int32_t containingElement(ElementSearch& search, const box_tree::Point& point);

// Returns the box of the nodes of an element (from 0), without its unused slots.
box_tree::Box elementBox(const model::Domain& domain, std::size_t element);

} // namespace observation_compare
