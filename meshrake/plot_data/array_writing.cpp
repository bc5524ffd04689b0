#include "meshrake/plot_data/array_writing.hpp"

#include "meshrake/model/run_state.hpp"
#include "meshrake/plot_data/binary_data_set.hpp"
#include "meshrake/plot_data/text_block.hpp"
#include "tvncommon/StringHelpers.hpp"
#include "tvncommon/number_formats.hpp"

#include <algorithm>
#include <array>
#include <string>

namespace plot_data {

using model::Domain;
using model::run;

namespace {

constexpr std::int64_t valuesPerRow = 5;

// Row width with its line feed.
constexpr std::int64_t rowBytes(const std::int32_t*) {
    return 56;
}
constexpr std::int64_t rowBytes(const void*) {
    return 131;
}

char* writeRows(const float* v, std::int64_t rows, char* out) {
    return number_formats::writeRealRows(v, rows, out);
}
char* writeRows(const double* v, std::int64_t rows, char* out) {
    return number_formats::writeRealRows(v, rows, out);
}
char* writeRows(const std::int32_t* v, std::int64_t rows, char* out) {
    return number_formats::writeIntegerRows(v, rows, out);
}
char* writeTail(const float* v, int count, char* out) {
    return number_formats::writeRealTail(v, count, out);
}
char* writeTail(const double* v, int count, char* out) {
    return number_formats::writeRealTail(v, count, out);
}
char* writeTail(const std::int32_t* v, int count, char* out) {
    return number_formats::writeIntegerTail(v, count, out);
}

template<class T>
void appendRows(TextBlock& block, const T* values, std::int64_t rows) {
    while (rows > 0) {
        const std::int64_t n = std::min(rows, roomForRows(block, rowBytes(values)));
        block.end = writeRows(values, n, block.end);
        values += n * valuesPerRow;
        rows -= n;
    }
}

template<class T>
void appendTail(TextBlock& block, const T* values, std::int64_t count) {
    if (count == 0) return;
    roomForRows(block, rowBytes(values));
    block.end = writeTail(values, static_cast<int>(count), block.end);
}

// Kept values are gathered a few rows at a time: they stay in the cache until they are text.
template<class T>
void appendPacked(TextBlock& block, std::int64_t count, const T* values, const std::uint8_t* mask) {
    std::array<T, 1000 * valuesPerRow> kept;
    std::size_t n = 0;
    for (std::int64_t i = 0; i < count; ++i) {
        kept[n] = values[i];
        n += mask[i];
        if (n < kept.size()) continue;
        appendRows(block, kept.data(), static_cast<std::int64_t>(n) / valuesPerRow);
        n = 0;
    }
    const auto rows = static_cast<std::int64_t>(n) / valuesPerRow;
    appendRows(block, kept.data(), rows);
    appendTail(block, kept.data() + rows * valuesPerRow,
               static_cast<std::int64_t>(n) - rows * valuesPerRow);
}

template<class T>
void writeArray(std::int32_t varNumber, std::int64_t count, const T* values, const Packing& packing,
                std::string_view label, Domain& domain) {
    if (run.tecplotBinary) return binary::writeArray(varNumber, count, values, packing, domain);
    TextBlock block = beginBlock(domain.tecplotUnit);
    appendLine(block, "# " + std::string(StringHelpers::trimRight(label)));
    if (packing.truncated) {
        appendPacked(block, count, values, packing.mask);
    } else {
        const std::int64_t rows = count / valuesPerRow;
        appendRows(block, values, rows);
        appendTail(block, values + rows * valuesPerRow, count - rows * valuesPerRow);
    }
    writeBlock(block);
}

} // namespace

void tecplotWriteArrayReal4(std::int32_t varNumber, std::int64_t count, const float* values,
                            const Packing& packing, std::string_view label, Domain& domain) {
    writeArray(varNumber, count, values, packing, label, domain);
}

void tecplotWriteArrayReal8(std::int32_t varNumber, std::int64_t count, const double* values,
                            const Packing& packing, std::string_view label, Domain& domain) {
    writeArray(varNumber, count, values, packing, label, domain);
}

void tecplotWriteArrayInt4(std::int32_t varNumber, std::int64_t count, const std::int32_t* values,
                           const Packing& packing, std::string_view label, Domain& domain) {
    writeArray(varNumber, count, values, packing, label, domain);
}

} // namespace plot_data
