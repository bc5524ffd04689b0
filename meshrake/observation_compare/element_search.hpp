#pragma once

#include "meshrake/model/domain.hpp"
#include "meshrake/observation_compare/shape_functions.hpp"
#include "tvncommon/search/box_tree.hpp"

#include <cstdint>
#include <vector>

namespace observation_compare {

// Finds the element that holds a point: the one at which a loop over all elements in ascending
// order would stop. Elements are tested by the box of their nodes.
//
// The loop keeps one set of local coordinates from element to element and from point to point, and
// an element without extent in some direction sets only some of them. Such an element is inside or
// not by a coordinate that an earlier element left behind; `Partial` tells which.
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
    std::vector<std::int32_t> always; // ascending: elements that no box can tell from others
    LocalPoint rst{};                 // as the last search left them
};

void prepare(ElementSearch& search, const model::Domain& domain);

// Number of the first element that holds the point, 0 when none does. `rst` then has the local
// coordinates in that element.
std::int32_t holdingElement(ElementSearch& search, const box_tree::Point& point);

// Box of the element's nodes, over the slots that it uses; elements count from 0.
box_tree::Box elementBox(const model::Domain& domain, std::size_t element);

} // namespace observation_compare
