#include "meshrake/paraview/multi_paraview.hpp"

#include "meshrake/model/cell_patterns.hpp"
#include "meshrake/model/result_files.hpp"
#include "meshrake/model/run_state.hpp"
#include "meshrake/paraview/array_rows.hpp"
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
using namespace model::tags;
using enum model::Option;

namespace {

// The file that is written, and the number of arrays so far in the current section.
struct Output {
    Domain& domain;
    int unit;
    std::int32_t dataIndex = 0;
};

void line(const Output& out, std::string_view text) {
    file_units::writeLine(out.unit, text);
}

std::string wideInteger(std::int32_t value) {
    return number_formats::integerField(value, number_formats::wideRealWidth);
}

// Whether the first pass found the variable, and nobody has switched it off since.
bool isShown(const Domain& domain, std::string_view key, Option option) {
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
    line(out, "# vtk DataFile Version 1.0");
    line(out, run.titleLines[title - 1]);
    line(out, "ASCII");
    line(out, "");
    line(out, "DATASET UNSTRUCTURED_GRID");
    line(out, "FIELD FieldData 1");
    line(out, "TIME 1 1 double");
    line(out, time);
}

// Number of the cell type of elements with so many slots.
int cellType(std::int32_t nodesPerElement) {
    constexpr std::pair<std::int32_t, int> types[] = {{2, 3}, {3, 8}, {4, 9}, {6, 12}, {8, 12}};
    for (const auto& [slots, type] : types)
        if (slots == nodesPerElement) return type;
    return 0;
}

using CellStep = void (*)(const Output&, const CellPattern&, const std::int32_t* slots);

// Only the first elements, as many as are included, are looked at, of which some may not be.
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
    line(out, std::string_view(text.data(), lineFeed));
}

void writeCellType(const Output& out, const CellPattern& pattern, const std::int32_t*) {
    line(out, std::to_string(cellType(pattern.nodesPerElement)));
}

void writeCells(const Output& out) {
    const std::int32_t cells = out.domain.neTruncated;
    const CellPattern& pattern = model::cellPattern(out.domain.nodesPerElement);
    if (pattern.length > 0) {
        const std::string numbers = count(std::int64_t{cells} * (pattern.length + 1));
        line(out, "");
        line(out, "CELLS " + count(cells) + (pattern.length < 8 ? " " : "\n") + numbers);
        forEachCell(out, pattern, writeCell);
    }
    line(out, "");
    line(out, "CELL_TYPES " + count(cells));
    if (pattern.length > 0) forEachCell(out, pattern, writeCellType);
}

Extent nodes(const Domain& domain) {
    return {domain.nodeCount, domain.nodeIncluded.data(), domain.truncateEnabled};
}

Extent elements(const Domain& domain) {
    return {domain.elementCount, domain.elementIncluded.data(), domain.truncateEnabled};
}

// A column that is not there, or was never filled, gives its label alone.
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

// One column of a variable as scalars.
struct ScalarRow {
    std::string_view key;
    model::DomainSet domains;
    Option option;
    std::string_view label;
    std::size_t column = 0;
    bool ofElements = false;
    std::string_view presentWith{}; // key of another variable whose presence counts
};

// clang-format off
constexpr ScalarRow nodeRows[] = {
    {"head", anyDomain, heads, "POINT_DATA,SCALARS head float"},
    {"head", olf | chan, heads, "POINT_DATA,SCALARS depth float", 1},
    {"head", olf | chan, heads, "POINT_DATA,SCALARS log10Depth float", 2},
    {"envH", pm, environmentalHead, "POINT_DATA,SCALARS ice_saturation float"},
    {"sat", pm | dual | olf, saturations, "POINT_DATA,SCALARS saturation float"},
    {"depth2gwt", pm, depthToWaterTable, "POINT_DATA,SCALARS Depth2GWT float", 0, false, "head"},
    {"iceSat", pm, iceSaturation, "POINT_DATA,SCALARS ice_saturation float"},
    {"etEvap", olf, et, "POINT_DATA,SCALARS surface_water_evapopration float"},
    {"etPmEvap", olf, et, "POINT_DATA,SCALARS surface_evapopration float"},
    {"etPmTranspire", olf, et, "POINT_DATA,SCALARS surface_transpiration float"},
    {"etActual", olf, et, "POINT_DATA,SCALARS Actual_ET float"},
    {"et3dEvap", pm, et3d, "POINT_DATA,SCALARS subsurface_evaporation float"},
    {"et3dTranspire", pm, et3d, "POINT_DATA,SCALARS subsurface_transpiration float"},
    {"rainSnowmelt", olf, rainAndSnowmelt, "CELL_DATA,SCALARS snowdepth float", 0, true},
    {"rainSnowmelt", olf, rainAndSnowmelt, "CELL_DATA,SCALARS snowmelt float", 1, true},
    {"rainSnowmelt", olf, rainAndSnowmelt, "CELL_DATA,SCALARS liquid_precipitation float", 2, true},
    {"rainSnowmelt", olf, rainAndSnowmelt, "CELL_DATA,SCALARS solid_precipitation float", 3, true},
    {"rainSnowmelt", olf, rainAndSnowmelt, "POINT_DATA,SCALARS snowcover float", 4},
    {"exchFluxDual", dual, exchangeFlux, "POINT_DATA,SCALARS exchange_flux float"},
    {"exchFlux", anyDomain & ~dual, exchangeFlux, "POINT_DATA,SCALARS exchange_flux float"},
    {"exchFluxPm", anyDomain, exchangeFlux, "POINT_DATA,SCALARS exchange_flux_pm2 float"},
    {"exchFluxOlf", anyDomain, exchangeFlux, "POINT_DATA,SCALARS exchange_flux_olf2 float"},
};

// Specific storage stands under the name of porosity.
constexpr ScalarRow elementRows[] = {
    {"elemK", anyDomain, elementK, "CELL_DATA,SCALARS Kxx float", 0, true},
    {"elemK", anyDomain, elementK, "CELL_DATA,SCALARS Kyy float", 1, true},
    {"elemK", anyDomain, elementK, "CELL_DATA,SCALARS Kzz float", 2, true},
    {"elemPor", anyDomain, elementPorosity, "CELL_DATA,SCALARS Porosity float", 0, true},
    {"elemStor", anyDomain, elementSpecificStorage, "CELL_DATA,SCALARS Porosity float", 0, true},
    {"elemTort", anyDomain, elementTortuosity, "CELL_DATA,SCALARS Tortuosity float", 0, true},
    {"elemIbedFraction", anyDomain, elementCompressibleFraction,
     "CELL_DATA,SCALARS IbedFractionosity float", 0, true},
    {"elemVolume", anyDomain, elementVolume, "CELL_DATA,SCALARS Volume float", 0, true},
    {"permafrost", anyDomain, permafrost, "CELL_DATA,SCALARS Permafrost float", 0, true},
};
// clang-format on

void writeScalars(Output& out, const ScalarRow& row) {
    Domain& domain = out.domain;
    const std::string_view present = row.presentWith.empty() ? row.key : row.presentWith;
    if ((row.domains & domain.tag) == 0 || !isShown(domain, present, row.option)) return;
    writeColumn(out, model::outputVar(domain, row.key), row.column,
                row.ofElements ? elements(domain) : nodes(domain), row.label);
}

void writeFamily(Output& out, std::string_view key, Option option,
                 const std::vector<std::string>& names) {
    if (!isShown(out.domain, key, option)) return;
    OutputVar& var = model::outputVar(out.domain, key);
    for (std::size_t member = 0; member < names.size(); ++member)
        writeColumn(out, var, member, nodes(out.domain),
                    "POINT_DATA,SCALARS " + names[member] + " float");
}

// The same name for all species; immobile ones are not exchanged.
void writeExchange(Output& out, std::string_view key, std::string_view label) {
    if (!isShown(out.domain, key, soluteExchange)) return;
    OutputVar& var = model::outputVar(out.domain, key);
    for (std::size_t mobile = 0; mobile < var.columns.size(); ++mobile)
        writeColumn(out, var, mobile, nodes(out.domain), label);
    if (var.columns.size() >= run.speciesNames.size()) return;
    const std::vector<float> zeros(static_cast<std::size_t>(out.domain.nodeCount));
    for (std::size_t s = var.columns.size(); s < run.speciesNames.size(); ++s)
        write_paraview_array(zeros, nodes(out.domain), label, ++out.dataIndex, out.unit);
}

void writeNodeLink(Output& out) {
    const Domain& domain = out.domain;
    if (domain.tag == pm) return;
    if (++out.dataIndex == 1) {
        line(out, "");
        line(out, "POINT_DATA " + count(domain.nodeCount));
    }
    line(out, "SCALARS 3D_node int");
    line(out, "LOOKUP_TABLE default");
    for (std::size_t i = 0; i < static_cast<std::size_t>(domain.nodeCount); ++i)
        if (domain.nodeIncluded[i]) line(out, wideInteger(domain.linkToPm[i]));
}

void writeNodeData(Output& out) {
    for (const ScalarRow& row : nodeRows) writeScalars(out, row);
    writeFamily(out, "conc", concentrations, run.speciesNames);
    writeFamily(out, "hmc", hmcFractions, run.hmcFractionNames);
    writeExchange(out, "exchSolAdv", "POINT_DATA,SCALARS adv_solute_exchange float");
    writeExchange(out, "exchSolDisp", "POINT_DATA,SCALARS disp_solute_exchange float");
    if (out.domain.tag == frac && model::enabled(out.domain, aperture))
        write_paraview_darray(out.domain.fractureAperture, elements(out.domain),
                              "POINT_DATA,SCALARS aperture float", ++out.dataIndex, out.unit);
    writeNodeLink(out);
}

void writeVectors(Output& out, std::string_view key, Option option, std::string_view label) {
    if (!isShown(out.domain, key, option)) return;
    const std::vector<model::Column>& columns = model::outputVar(out.domain, key).columns;
    write_paraview_vector_array(columns[0].real4, columns[1].real4, columns[2].real4,
                                elements(out.domain), label, ++out.dataIndex, out.unit);
}

void writeElementData(Output& out) {
    out.dataIndex = 0;
    writeVectors(out, "vel", linearVelocities, "CELL_DATA,VECTORS linear_velocity_xyz float");
    writeVectors(out, "peclet", pecletNumber, "CELL_DATA,VECTORS Peclet_xyz float");
    writeVectors(out, "diffPeclet", diffusionPecletNumber,
                 "CELL_DATA,VECTORS Diffusion_Peclet_xyz float");
    for (const ScalarRow& row : elementRows) writeScalars(out, row);
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
