#pragma once

#include "meshrake/model/domain.hpp"

#include <cstdint>
#include <functional>

namespace plot_data {

// Writes `lists` node lists of `length` numbers each, one after the other in `nodes`.
using WriteNodeLists =
    std::function<void(const std::int32_t* nodes, std::int64_t lists, int length)>;

// Calls `write` with the node lists of the included elements, in pieces of several thousand lists
// or all at once. Without included elements there is no call. Numbers are those of the output mesh,
// from 1. An unused slot repeats a node or, if its shape repeats none, is 0.
void writeNodeLists(const model::Domain& domain, const WriteNodeLists& write);

} // namespace plot_data
