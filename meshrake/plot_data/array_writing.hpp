#pragma once

#include "meshrake/model/domain.hpp"

#include <cstdint>
#include <functional>
#include <span>
#include <string_view>

// Writes the values of one variable into the current zone. The text form has a comment line and
// then rows of five values, collected in one large buffer that reaches the file block by block. The
// binary form passes arrays to the writer library as they are. A failed write ends the run.
namespace plot_data {

// Which of a mesh's values are written.
struct Packing {
    bool truncated = false;             // only the values whose mask entry is set
    const std::uint8_t* mask = nullptr; // one entry for each value
};

// Write `count` values, of which the packing may select a part. `label` is the comment. The text
// form has the variables in the order of the calls, whatever their numbers.
void tecplotWriteArrayReal4(std::int32_t varNumber, std::int64_t count, const float* values,
                            const Packing& packing, std::string_view label, model::Domain& domain);
void tecplotWriteArrayReal8(std::int32_t varNumber, std::int64_t count, const double* values,
                            const Packing& packing, std::string_view label, model::Domain& domain);
void tecplotWriteArrayInt4(std::int32_t varNumber, std::int64_t count, const std::int32_t* values,
                           const Packing& packing, std::string_view label, model::Domain& domain);

// Returns the next values to write: the first part of `buffer`, which the call has filled, or an
// array of its own. The result is empty after the last value. A result in `buffer` that is shorter
// than `buffer` must be the last one.
template<class T>
using ValueGenerator = std::function<std::span<const T>(std::span<T> buffer)>;

// The same for values that are computed piece by piece, without an array of all values.
void tecplotWriteGeneratedReal8(std::int32_t varNumber, const ValueGenerator<double>& next,
                                std::string_view label, model::Domain& domain);
void tecplotWriteGeneratedInt4(std::int32_t varNumber, const ValueGenerator<std::int32_t>& next,
                               std::string_view label, model::Domain& domain);

} // namespace plot_data
