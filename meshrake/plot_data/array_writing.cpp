#include "meshrake/plot_data/array_writing.hpp"

#include "meshrake/model/run_state.hpp"
#include "meshrake/plot_data/writer_functions.hpp"

#include <algorithm>
#include <utility>

namespace plot_data {

using model::Domain;

namespace {

template<class T>
std::span<const T> arrayOf(const T* values, std::int64_t count) {
    return {values, static_cast<std::size_t>(count)};
}

template<class T>
ValueGenerator<T> maskedValues(std::span<const T> values, const std::uint8_t* mask) {
    return [=, i = std::size_t{0}](std::span<T> buffer) mutable -> std::span<const T> {
        std::size_t n = 0;
        while (i < values.size() && n < buffer.size()) {
            // So many fit even if the mask selects all of them.
            const std::size_t end = i + std::min(values.size() - i, buffer.size() - n);
            for (; i < end; ++i) {
                buffer[n] = values[i];
                n += mask[i];
            }
        }
        return buffer.first(n);
    };
}

// Generates as many values, but not the values: a dry run has none.
template<class T>
ValueGenerator<T> countedValues(std::int64_t count, const Packing& packing) {
    std::int64_t left = count;
    if (packing.truncated) left = std::count(packing.mask, packing.mask + count, 1);
    return [left](std::span<T> buffer) mutable -> std::span<const T> {
        const std::int64_t n = std::min(left, std::ssize(buffer));
        left -= n;
        return buffer.first(static_cast<std::size_t>(n));
    };
}

template<class T>
ValueGenerator<T> valuesToWrite(std::int64_t count, const T* values, const Packing& packing) {
    if (model::run.dryRun) return countedValues<T>(count, packing);
    if (packing.truncated) return maskedValues(arrayOf(values, count), packing.mask);
    return
        [rest = arrayOf(values, count)](std::span<T>) mutable { return std::exchange(rest, {}); };
}

} // namespace

void tecplotWriteArrayReal4(std::int32_t varNumber, std::int64_t count, const float* values,
                            const Packing& packing, std::string_view label, Domain& domain) {
    writer().writeReal4(varNumber, valuesToWrite(count, values, packing), label, domain);
}

void tecplotWriteArrayReal8(std::int32_t varNumber, std::int64_t count, const double* values,
                            const Packing& packing, std::string_view label, Domain& domain) {
    writer().writeReal8(varNumber, valuesToWrite(count, values, packing), label, domain);
}

void tecplotWriteArrayInt4(std::int32_t varNumber, std::int64_t count, const std::int32_t* values,
                           const Packing& packing, std::string_view label, Domain& domain) {
    writer().writeInt4(varNumber, valuesToWrite(count, values, packing), label, domain);
}

void tecplotWriteGeneratedReal8(std::int32_t varNumber, const ValueGenerator<double>& next,
                                std::string_view label, Domain& domain) {
    writer().writeReal8(varNumber, next, label, domain);
}

void tecplotWriteGeneratedInt4(std::int32_t varNumber, const ValueGenerator<std::int32_t>& next,
                               std::string_view label, Domain& domain) {
    writer().writeInt4(varNumber, next, label, domain);
}

} // namespace plot_data
