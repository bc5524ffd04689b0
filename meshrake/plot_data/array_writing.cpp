#include "meshrake/plot_data/array_writing.hpp"

#include "meshrake/model/run_state.hpp"
#include "meshrake/plot_data/binary_data_set.hpp"
#include "meshrake/plot_data/text_block.hpp"
#include "tvncommon/text/StringHelpers.hpp"
#include "tvncommon/text/number_formats.hpp"

#include <algorithm>
#include <array>
#include <string>
#include <type_traits>

namespace plot_data {

using model::Domain;
using model::run;

namespace {

using number_formats::valuesPerRow;

template<class T>
constexpr bool isReal = std::is_floating_point_v<T>;

template<class T>
constexpr std::int64_t rowBytes =
    isReal<T> ? number_formats::realRowBytes : number_formats::integerRowBytes;

template<class T>
void appendRows(TextBlock& block, const T* values, std::int64_t rows) {
    while (rows > 0) {
        const std::int64_t n = std::min(rows, makeRoom(block, rowBytes<T>));
        if constexpr (isReal<T>)
            block.end = number_formats::writeRealRows(values, n, block.end);
        else
            block.end = number_formats::writeIntegerRows(values, n, block.end);
        values += n * valuesPerRow;
        rows -= n;
    }
}

template<class T>
void appendTail(TextBlock& block, const T* values, int count) {
    if (count == 0) return;
    makeRoom(block, rowBytes<T>);
    if constexpr (isReal<T>)
        block.end = number_formats::writeRealTail(values, count, block.end);
    else
        block.end = number_formats::writeIntegerTail(values, count, block.end);
}

// Values that are gathered or made stay in the cache until they are in the file. Whole rows.
constexpr std::size_t valuesAtOnce = 4000 * valuesPerRow;

// The values that the packing keeps, in pieces.
template<class T>
NextValues<T> keptValues(std::int64_t count, const T* values, const std::uint8_t* mask) {
    return [=, i = std::int64_t{0}](T* kept, std::int64_t room) mutable {
        std::int64_t n = 0;
        for (; i < count && n < room; ++i) {
            kept[n] = values[i];
            n += mask[i];
        }
        return n;
    };
}

template<class T>
void appendArray(TextBlock& block, const T* values, std::int64_t count) {
    const std::int64_t rows = count / valuesPerRow;
    appendRows(block, values, rows);
    appendTail(block, values + rows * valuesPerRow, static_cast<int>(count % valuesPerRow));
}

TextBlock beginArray(std::string_view label, const Domain& domain) {
    TextBlock block = beginBlock(domain.tecplotUnit);
    appendLine(block, "# " + std::string(StringHelpers::trimRight(label)));
    return block;
}

template<class T>
void writeTextPieces(const NextValues<T>& next, std::string_view label, const Domain& domain) {
    std::array<T, valuesAtOnce> values;
    constexpr auto room = static_cast<std::int64_t>(valuesAtOnce);
    TextBlock block = beginArray(label, domain);
    for (std::int64_t n = room; n == room;) {
        n = next(values.data(), room);
        appendArray(block, values.data(), n);
    }
    writeBlock(block);
}

template<class T>
void writeBinaryPieces(std::int32_t varNumber, const NextValues<T>& next, Domain& domain) {
    std::array<T, valuesAtOnce> values;
    constexpr auto room = static_cast<std::int64_t>(valuesAtOnce);
    std::int64_t written = 0;
    for (std::int64_t n = room; n == room; written += n) {
        n = next(values.data(), room);
        if (n > 0 || written == 0) binary::writeValues(varNumber, n, values.data(), domain);
    }
    binary::checkCount(varNumber, written, domain);
}

template<class T>
void writePieces(std::int32_t varNumber, const NextValues<T>& next, std::string_view label,
                 Domain& domain) {
    if (run.tecplotBinary) return writeBinaryPieces(varNumber, next, domain);
    writeTextPieces(next, label, domain);
}

template<class T>
void writeArray(std::int32_t varNumber, std::int64_t count, const T* values, const Packing& packing,
                std::string_view label, Domain& domain) {
    if (packing.truncated)
        return writePieces(varNumber, keptValues(count, values, packing.mask), label, domain);
    if (run.tecplotBinary) {
        binary::writeValues(varNumber, count, values, domain);
        return binary::checkCount(varNumber, count, domain);
    }
    TextBlock block = beginArray(label, domain);
    appendArray(block, values, count);
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

void tecplotWriteMadeReal8(std::int32_t varNumber, const NextValues<double>& next,
                           std::string_view label, Domain& domain) {
    writePieces(varNumber, next, label, domain);
}

void tecplotWriteMadeInt4(std::int32_t varNumber, const NextValues<std::int32_t>& next,
                          std::string_view label, Domain& domain) {
    writePieces(varNumber, next, label, domain);
}

} // namespace plot_data
