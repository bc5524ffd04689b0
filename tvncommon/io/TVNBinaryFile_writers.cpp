#include "tvncommon/io/TVNBinaryFile_writers.hpp"

#include "tvncommon/diagnostics/error.hpp"
#include "tvncommon/io/TVNBinaryFile.hpp"
#include "tvncommon/io/file_units.hpp"
#include "tvncommon/io/io_layer.hpp"
#include "tvncommon/text/StringHelpers.hpp"
#include "tvncommon/text/utils.hpp"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace TVNBinaryFile {

namespace {

struct State {
    bool useOldFormat = false;
};
State state;

template<class T>
constexpr std::string_view typeCode;
template<>
constexpr std::string_view typeCode<std::int32_t> = "I04";
template<>
constexpr std::string_view typeCode<float> = "R04";
template<>
constexpr std::string_view typeCode<double> = "R08";

// The entries of an array that are written.
struct Part {
    std::size_t begin = 0, count = 0;
};

Part partOf(std::int32_t first, std::int32_t last, std::size_t size, const std::string& filename) {
    if (last < first) return {};
    if (first < 1 || static_cast<std::size_t>(last) > size)
        error::fatalError("Error writing values to file " + filename + "\nValues " +
                          std::to_string(first) + " to " + std::to_string(last) +
                          " of an array of " + std::to_string(size));
    return {static_cast<std::size_t>(first) - 1, static_cast<std::size_t>(last - first) + 1};
}

int openWithHeader(const std::string& filename, std::string_view message, std::string_view type,
                   std::int32_t components, std::size_t values) {
    const int unit = file_units::getUnit();
    error::checkFileOpen(io_layer::openRecordsReplace(unit, filename), filename);
    int status = io_layer::ok;
    writeFormattedHeader(unit, message, type, components, static_cast<std::int32_t>(values),
                         status);
    if (status != io_layer::ok)
        error::fatalErrorStat(status, "Error writing header to file " + filename);
    return unit;
}

template<class T>
void writeValues(int unit, const T* values, std::size_t count, const std::string& filename) {
    const int status =
        io_layer::writeRecord(unit, values, static_cast<std::int64_t>(count * sizeof(T)));
    if (status != io_layer::ok)
        error::fatalErrorStat(status, "Error writing values to file " + filename);
}

template<class T>
void write_1d(const std::string& filename, std::string_view message, std::int32_t first,
              std::int32_t last, std::span<const T> array) {
    const Part part = partOf(first, last, array.size(), filename);
    const int unit = openWithHeader(filename, message, typeCode<T>, 1, part.count);
    writeValues(unit, array.data() + part.begin, part.count, filename);
    file_units::freeUnit(unit);
}

template<class T>
void write_2d(const std::string& filename, std::string_view message, std::int32_t first,
              std::int32_t last, std::int32_t columns, std::span<const T> array) {
    const auto width = static_cast<std::size_t>(std::max(columns, 0));
    const std::size_t rows = width == 0 ? 0 : array.size() / width;
    const Part part = partOf(first, last, rows, filename);
    const int unit = openWithHeader(filename, message, typeCode<T>,
                                    static_cast<std::int32_t>(width), part.count);
    if (state.useOldFormat) {
        std::vector<T> row(width);
        for (std::size_t i = part.begin; i < part.begin + part.count; ++i) {
            for (std::size_t c = 0; c < width; ++c) row[c] = array[c * rows + i];
            writeValues(unit, row.data(), width, filename);
        }
    } else {
        for (std::size_t c = 0; c < width; ++c)
            writeValues(unit, array.data() + c * rows + part.begin, part.count, filename);
    }
    file_units::freeUnit(unit);
}

} // namespace

void setUseOldFormat(bool on) {
    state.useOldFormat = on;
}

void resetWriters() {
    state = {};
}

void write_i4_1d(const std::string& filename, std::string_view message, std::int32_t first,
                 std::int32_t last, std::span<const std::int32_t> array) {
    write_1d(filename, message, first, last, array);
}

void write_r4_1d(const std::string& filename, std::string_view message, std::int32_t first,
                 std::int32_t last, std::span<const float> array) {
    write_1d(filename, message, first, last, array);
}

void write_r8_1d(const std::string& filename, std::string_view message, std::int32_t first,
                 std::int32_t last, std::span<const double> array) {
    write_1d(filename, message, first, last, array);
}

void write_r4_2d(const std::string& filename, std::string_view message, std::int32_t first,
                 std::int32_t last, std::int32_t columns, std::span<const float> array) {
    write_2d(filename, message, first, last, columns, array);
}

void write_r8_2d(const std::string& filename, std::string_view message, std::int32_t first,
                 std::int32_t last, std::int32_t columns, std::span<const double> array) {
    write_2d(filename, message, first, last, columns, array);
}

void writeFormattedHeader(int unit, std::string_view message, std::string_view type,
                          std::int32_t numComponents, std::int32_t numValues, int& status) {
    std::string header(StringHelpers::trimLeft(message)), code(type);
    code.resize(3, ' ');
    header.resize(headerLength, ' ');
    if (!state.useOldFormat)
        header.replace(magicOffset, std::string::npos,
                       std::string(magicText) + "001LE" + code +
                           utils::zeroPaddedIntString(numComponents, 2) +
                           utils::zeroPaddedIntString(numValues, 10));
    status = io_layer::writeRecord(unit, header.data(), headerLength);
}

} // namespace TVNBinaryFile
