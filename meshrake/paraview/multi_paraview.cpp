#include "meshrake/paraview/multi_paraview.hpp"

#include "meshrake/model/cell_patterns.hpp"
#include "meshrake/model/file_names.hpp"
#include "meshrake/model/output_lines.hpp"
#include "meshrake/model/result_files.hpp"
#include "meshrake/model/run_state.hpp"
#include "meshrake/paraview/array_rows.hpp"
#include "meshrake/paraview/vtk_tables.hpp"
#include "tvncommon/io/file_units.hpp"
#include "tvncommon/io/io_layer.hpp"
#include "tvncommon/text/number_formats.hpp"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

namespace paraview {

using model::CellPattern;
using model::Domain;
using model::Option;
using model::OutputVar;
using model::run;

namespace {

struct Output {
    Domain& domain;
    int unit;                   // of the file
    std::int32_t dataIndex = 0; // arrays so far in the current section
};

void writeLine(const Output& out, std::string_view text) {
    file_units::writeLine(out.unit, text);
}

std::string wideInteger(std::int32_t value) {
    return number_formats::integerField(value, number_formats::wideRealWidth);
}

// True if the first pass found the variable and its option is enabled.
bool isWritten(const Domain& domain, std::string_view key, Option option) {
    const OutputVar* var = model::findOutputVar(domain, key);
    return var && var->firstExists && model::enabled(domain, option);
}

int openFile(const Domain& domain) {
    const std::string name = model::problemFile(domain.name + "." + run.timeSuffix + ".vtk");
    if (run.timeIndex == 1) {
        constexpr std::size_t nameWidth = 300;
        std::string padded = name;
        padded.resize(std::max(name.size(), nameWidth), ' ');
        model::write_string(" ");
        model::write_string(std::string(48, '-'));
        model::write_string(domain.name + " data to paraview");
        model::write_string("Creating paraview file " + padded);
    }
    return file_units::openTextReplace(name, io_layer::Flush::inBlocks);
}

void writeHead(const Output& out) {
    std::string time(number_formats::wideRealWidth, ' ');
    number_formats::writeWideReal(model::currentTime(), time.data());
    const std::size_t title =
        run.numTitleLines < 2 ? 1 : static_cast<std::size_t>(run.numTitleLines);
    writeLine(out, "# vtk DataFile Version 1.0");
    writeLine(out, run.titleLines[title - 1]);
    writeLine(out, "ASCII");
    writeLine(out, "");
    writeLine(out, "DATASET UNSTRUCTURED_GRID");
    writeLine(out, "FIELD FieldData 1");
    writeLine(out, "TIME 1 1 double");
    writeLine(out, time);
}

// Returns the cell type of the legacy VTK format for elements with this number of slots: line,
// pixel (a triangle, whose cell repeats a node), quadrilateral or brick.
int cellType(std::int32_t nodesPerElement) {
    constexpr std::pair<std::int32_t, int> types[] = {{2, 3}, {3, 8}, {4, 9}, {6, 12}, {8, 12}};
    for (const auto& [slots, type] : types)
        if (slots == nodesPerElement) return type;
    return 0;
}

using CellStep = void (*)(const Output&, const CellPattern&, const std::int32_t* slots);

// Calls the step for the included elements among the first `neTruncated` elements, not among all.
void forEachCell(const Output& out, const CellPattern& pattern, CellStep step) {
    const Domain& domain = out.domain;
    const CellPattern& triangle = model::cellPattern(3);
    for (std::size_t e = 0; e < static_cast<std::size_t>(domain.neTruncated); ++e) {
        if (!domain.elementIncluded[e]) continue;
        const std::int32_t* slots = model::slotsOf(domain, e);
        step(out, model::isTriangle(domain, slots) ? triangle : pattern, slots);
    }
}

void writeCell(const Output& out, const CellPattern& pattern, const std::int32_t* slots) {
    std::array<std::int32_t, model::maximumCellSlots> numbers{};
    for (std::size_t k = 0; k < static_cast<std::size_t>(pattern.length); ++k) {
        const std::int32_t node = slots[pattern.slots[k]];
        numbers[k] =
            node < 1 ? -1 : out.domain.nodeRenumber[static_cast<std::size_t>(node) - 1] - 1;
    }
    std::array<char, 1 + model::maximumCellSlots*(number_formats::integerWidth + 1) + 1> text;
    text[0] = static_cast<char>('0' + pattern.length);
    const char* lineFeed =
        number_formats::writeConnectivityRows(numbers.data(), 1, pattern.length, text.data() + 1) -
        1;
    writeLine(out, std::string_view(text.data(), lineFeed));
}

void writeCellType(const Output& out, const CellPattern& pattern, const std::int32_t*) {
    writeLine(out, std::to_string(cellType(pattern.nodesPerElement)));
}

void writeCells(const Output& out) {
    const std::int32_t cells = out.domain.neTruncated;
    const CellPattern& pattern = model::cellPattern(out.domain.nodesPerElement);
    if (pattern.length > 0) {
        const std::string numbers = count(std::int64_t{cells} * (pattern.length + 1));
        writeLine(out, "");
        writeLine(out, "CELLS " + count(cells) + (pattern.length < 8 ? " " : "\n") + numbers);
        forEachCell(out, pattern, writeCell);
    }
    writeLine(out, "");
    writeLine(out, "CELL_TYPES " + count(cells));
    if (pattern.length > 0) forEachCell(out, pattern, writeCellType);
}

Extent nodes(const Domain& domain) {
    return {domain.nodeCount, domain.nodeIncluded.data(), domain.outputIsPacked};
}

Extent elements(const Domain& domain) {
    return {domain.elementCount, domain.elementIncluded.data(), domain.outputIsPacked};
}

// Writes only the label if the column is missing or has no values.
void writeColumn(Output& out, OutputVar& var, std::size_t column, const Extent& extent,
                 std::string_view label) {
    model::Column none;
    model::Column& values = column < var.columns.size() ? var.columns[column] : none;
    ++out.dataIndex;
    if (values.real4.empty())
        write_paraview_darray(values.real8, extent, label, out.dataIndex, out.unit);
    else
        write_paraview_array(values.real4, extent, label, out.dataIndex, out.unit);
}

void writeScalars(Output& out, const ScalarRow& row) {
    Domain& domain = out.domain;
    const std::string_view present = row.presentWith.empty() ? row.key : row.presentWith;
    if ((row.domains & domain.tag) == 0 || !isWritten(domain, present, row.option)) return;
    writeColumn(out, model::outputVar(domain, row.key), row.column,
                row.ofElements ? elements(domain) : nodes(domain), row.label);
}

void writeFamily(Output& out, const FamilyRow& row) {
    if (!isWritten(out.domain, row.key, row.option)) return;
    OutputVar& var = model::outputVar(out.domain, row.key);
    const std::vector<std::string>& names = run.*row.names;
    for (std::size_t member = 0; member < names.size(); ++member)
        writeColumn(out, var, member, nodes(out.domain),
                    "POINT_DATA,SCALARS " + names[member] + " float");
}

// Immobile species are not exchanged: writes zeros for them.
void writeExchange(Output& out, const ArrayRow& row) {
    if (!isWritten(out.domain, row.key, row.option)) return;
    OutputVar& var = model::outputVar(out.domain, row.key);
    for (std::size_t mobile = 0; mobile < var.columns.size(); ++mobile)
        writeColumn(out, var, mobile, nodes(out.domain), row.label);
    if (var.columns.size() >= run.speciesNames.size()) return;
    const std::vector<float> zeros(static_cast<std::size_t>(out.domain.nodeCount));
    for (std::size_t s = var.columns.size(); s < run.speciesNames.size(); ++s)
        write_paraview_array(zeros, nodes(out.domain), row.label, ++out.dataIndex, out.unit);
}

void writeNodeLink(Output& out) {
    const Domain& domain = out.domain;
    if (domain.tag == model::tags::pm) return;
    if (++out.dataIndex == 1) {
        writeLine(out, "");
        writeLine(out, "POINT_DATA " + count(domain.nodeCount));
    }
    writeLine(out, "SCALARS 3D_node int");
    writeLine(out, "LOOKUP_TABLE default");
    for (std::size_t i = 0; i < static_cast<std::size_t>(domain.nodeCount); ++i)
        if (domain.nodeIncluded[i]) writeLine(out, wideInteger(domain.linkToPm[i]));
}

void writeNodeData(Output& out) {
    for (const ScalarRow& row : nodeScalars()) writeScalars(out, row);
    for (const FamilyRow& row : families()) writeFamily(out, row);
    for (const ArrayRow& row : soluteExchanges()) writeExchange(out, row);
    if (out.domain.tag == model::tags::frac && model::enabled(out.domain, Option::aperture))
        write_paraview_darray(out.domain.fractureAperture, elements(out.domain),
                              "POINT_DATA,SCALARS aperture float", ++out.dataIndex, out.unit);
    writeNodeLink(out);
}

void writeVectors(Output& out, const ArrayRow& row) {
    if (!isWritten(out.domain, row.key, row.option)) return;
    const std::vector<model::Column>& columns = model::outputVar(out.domain, row.key).columns;
    write_paraview_vector_array(columns[0].real4, columns[1].real4, columns[2].real4,
                                elements(out.domain), row.label, ++out.dataIndex, out.unit);
}

void writeElementData(Output& out) {
    out.dataIndex = 0;
    for (const ArrayRow& row : vectors()) writeVectors(out, row);
    for (const ScalarRow& row : elementScalars()) writeScalars(out, row);
}

} // namespace

void multiParaview(Domain& domain) {
    Output out{domain, openFile(domain)};
    writeHead(out);
    writePoints({domain.x, domain.y, domain.z}, domain.nnTruncated, out.unit);
    writeCells(out);
    writeNodeData(out);
    writeElementData(out);
    file_units::freeUnit(out.unit);
}

} // namespace paraview
