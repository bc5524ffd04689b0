#pragma once

#include "meshrake/model/domain.hpp"

#include <cstdint>
#include <string_view>

// Values of one variable into the current zone: a comment line, then rows of five values. Rows are
// put together in one large buffer and reach the file block by block. A failed write ends the run.
namespace plot_data {

// Which of a mesh's values reach the file.
struct Packing {
    bool truncated = false;             // only the values whose mask entry is set
    const std::uint8_t* mask = nullptr; // one entry for each value
};

// `count` values, of which the packing keeps some; `label` is the comment.
void tecplotWriteArrayReal4(std::int64_t count, const float* values, const Packing& packing,
                            std::string_view label, model::Domain& domain);
void tecplotWriteArrayReal8(std::int64_t count, const double* values, const Packing& packing,
                            std::string_view label, model::Domain& domain);
void tecplotWriteArrayInt4(std::int64_t count, const std::int32_t* values, const Packing& packing,
                           std::string_view label, model::Domain& domain);

} // namespace plot_data
