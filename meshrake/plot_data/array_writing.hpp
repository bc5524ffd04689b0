#pragma once

#include "meshrake/model/domain.hpp"

#include <cstdint>
#include <functional>
#include <string_view>

// Values of one variable into the current zone. In the text form: a comment line, then rows of five
// values; rows are put together in one large buffer and reach the file block by block. In the
// binary form the array goes to the file as it stands. A failed write ends the run.
namespace plot_data {

// Which of a mesh's values reach the file.
struct Packing {
    bool truncated = false;             // only the values whose mask entry is set
    const std::uint8_t* mask = nullptr; // one entry for each value
};

// `count` values, of which the packing keeps some; `label` is the comment. Text has its variables
// in the order of the calls, whatever their numbers.
void tecplotWriteArrayReal4(std::int32_t varNumber, std::int64_t count, const float* values,
                            const Packing& packing, std::string_view label, model::Domain& domain);
void tecplotWriteArrayReal8(std::int32_t varNumber, std::int64_t count, const double* values,
                            const Packing& packing, std::string_view label, model::Domain& domain);
void tecplotWriteArrayInt4(std::int32_t varNumber, std::int64_t count, const std::int32_t* values,
                           const Packing& packing, std::string_view label, model::Domain& domain);

// Puts the next of the values that reach the file into `values`, at most `room` of them, and tells
// how many; 0 at the end.
template<class T>
using NextValues = std::function<std::int64_t(T* values, std::int64_t room)>;

// The same for values that are made as they are written and never stand in memory together.
void tecplotWriteMadeReal8(std::int32_t varNumber, const NextValues<double>& next,
                           std::string_view label, model::Domain& domain);
void tecplotWriteMadeInt4(std::int32_t varNumber, const NextValues<std::int32_t>& next,
                          std::string_view label, model::Domain& domain);

} // namespace plot_data
