#include "meshrake/model/file_names.hpp"
#include "meshrake/model/output_lines.hpp"
#include "meshrake/plot_data/data_set.hpp"
#include "meshrake/plot_data/node_lists.hpp"
#include "meshrake/plot_data/text_block.hpp"
#include "meshrake/plot_data/text_layout.hpp"
#include "meshrake/plot_data/writer_functions.hpp"
#include "tvncommon/diagnostics/error.hpp"
#include "tvncommon/io/file_units.hpp"
#include "tvncommon/io/io_layer.hpp"
#include "tvncommon/text/StringHelpers.hpp"
#include "tvncommon/text/number_formats.hpp"

#include <algorithm>
#include <array>
#include <type_traits>

namespace plot_data {

using model::DataSet;

namespace {

using number_formats::valuesPerRow;
static_assert(valuesPerPiece % valuesPerRow == 0);

void appendLine(std::string& text, const std::string& line) {
    if (!text.empty()) text += '\n';
    text += line;
}

void addVariableName(std::string_view name, Domain& domain) {
    domain.dataSet.varNameList += "\"" + std::string(name) + "\"";
}

void addDataType(DataType type, Domain& domain) {
    std::string& list = domain.dataSet.varTypeList;
    if (!list.empty()) list += ',';
    list += tecDt2String(type);
}

void addUnit(std::string_view varName, std::int32_t varNumber, const std::string& unit,
             Domain& domain) {
    if (unit.empty()) return;
    const std::string name(StringHelpers::trimLeft(StringHelpers::trimRight(varName)));
    appendLine(domain.dataSet.unitComments, "# " + name + " units: " + unit);
    appendLine(domain.dataSet.unitAuxData,
               "VARAUXDATA " + std::to_string(varNumber) + " Units=\"" + unit + "\"");
}

void openFile(std::string_view name, std::string_view title, Domain& domain) {
    const std::string path = model::fileName(std::string(name) + ".dat");
    if (domain.tecplotUnit < 1) domain.tecplotUnit = file_units::getUnit();
    error::checkFileOpen(
        io_layer::openTextReplace(domain.tecplotUnit, path, io_layer::Flush::inBlocks), path);
    file_units::writeLine(domain.tecplotUnit, text_layout::titleLine(title));
    file_units::writeLine(domain.tecplotUnit, text_layout::variablesLine(domain));
}

void writeMetadata(std::string_view key, std::string_view value, Domain& domain) {
    file_units::writeLine(domain.tecplotUnit, text_layout::metadataLine(key, value));
}

void writeUnits(Domain& domain) {
    const DataSet& set = domain.dataSet;
    if (!set.unitComments.empty()) file_units::writeLine(domain.tecplotUnit, set.unitComments);
    if (!set.unitAuxData.empty()) file_units::writeLine(domain.tecplotUnit, set.unitAuxData);
}

// A text file has no headers that are written late, so there is nothing to flush.
void flushFile(Domain&) {}

void closeFile(Domain& domain) {
    if (domain.tecplotUnit < 1 || domain.dataSet.fileName.empty()) return;
    model::write_string("Closing tecplot file: " + domain.dataSet.fileName);
    writeKeptBlock();
    file_units::freeUnit(domain.tecplotUnit);
    domain.tecplotUnit = -1;
}

void writeZone(std::string_view title, std::string_view solutionTime, int connectivityShareZone,
               Domain& domain) {
    writeKeptBlock();
    ++domain.dataSet.zoneNumber;
    file_units::writeLine(domain.tecplotUnit, text_layout::zoneLine(title, solutionTime,
                                                                    connectivityShareZone, domain));
    const std::string types = text_layout::typesLine(domain);
    if (!types.empty()) file_units::writeLine(domain.tecplotUnit, types);
}

// Appends rows of five values. Only the last row of an array may be shorter.
template<class T>
void appendValues(TextBlock& block, std::span<const T> values) {
    constexpr bool isReal = std::is_floating_point_v<T>;
    constexpr std::int64_t rowBytes =
        isReal ? number_formats::realRowBytes : number_formats::integerRowBytes;
    const T* next = values.data();
    for (std::int64_t rows = std::ssize(values) / valuesPerRow; rows > 0;) {
        const std::int64_t n = std::min(rows, ensureSpace(block, rowBytes));
        if constexpr (isReal)
            block.end = number_formats::writeRealRows(next, n, block.end);
        else
            block.end = number_formats::writeIntegerRows(next, n, block.end);
        next += n * valuesPerRow;
        rows -= n;
    }
    const auto tail = static_cast<int>(std::ssize(values) % valuesPerRow);
    if (tail == 0) return;
    ensureSpace(block, rowBytes);
    if constexpr (isReal)
        block.end = number_formats::writeRealTail(next, tail, block.end);
    else
        block.end = number_formats::writeIntegerTail(next, tail, block.end);
}

template<class T>
void writeArray(std::int32_t, const ValueGenerator<T>& next, std::string_view label,
                Domain& domain) {
    std::array<T, valuesPerPiece> buffer;
    TextBlock block = beginBlock(domain.tecplotUnit);
    appendLine(block, text_layout::arrayLine(label));
    for (std::span<const T> piece = next(buffer); !piece.empty(); piece = next(buffer))
        appendValues(block, piece);
    keepBlock(block);
}

void writeConnectivity(Domain& domain) {
    TextBlock block = beginBlock(domain.tecplotUnit);
    appendLine(block, text_layout::nodeListsLine);
    writeNodeLists(domain, [&](const std::int32_t* nodes, std::int64_t lists, int length) {
        const std::int64_t rowBytes = text_layout::nodeListBytes(length);
        while (lists > 0) {
            const std::int64_t n = std::min(lists, ensureSpace(block, rowBytes));
            block.end = number_formats::writeConnectivityRows(nodes, n, length, block.end);
            nodes += n * length;
            lists -= n;
        }
    });
    keepBlock(block);
}

void endZone(Domain&) {
    writeKeptBlock();
}

} // namespace

const WriterFunctions textWriter{.extension = ".dat",
                                 .addVariableName = addVariableName,
                                 .addDataType = addDataType,
                                 .addUnit = addUnit,
                                 .openFile = openFile,
                                 .writeMetadata = writeMetadata,
                                 .writeUnits = writeUnits,
                                 .flushFile = flushFile,
                                 .closeFile = closeFile,
                                 .writeZone = writeZone,
                                 .writeReal4 = writeArray<float>,
                                 .writeReal8 = writeArray<double>,
                                 .writeInt4 = writeArray<std::int32_t>,
                                 .writeConnectivity = writeConnectivity,
                                 .endZone = endZone};

} // namespace plot_data
