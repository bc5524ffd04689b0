#include "meshrake/paraview/multi_paraview.hpp"

#include "meshrake/model/run_state.hpp"
#include "meshrake/paraview/array_rows.hpp"
#include "tvncommon/error.hpp"
#include "tvncommon/file_units.hpp"
#include "tvncommon/free_form.hpp"
#include "tvncommon/io_layer.hpp"
#include "tvncommon/number_formats.hpp"

#include <algorithm>
#include <array>
#include <optional>
#include <string>

namespace paraview {

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

std::string wideReal(double value) {
    std::string field(number_formats::wideRealWidth, ' ');
    number_formats::writeWideReal(value, field.data());
    return field;
}

std::string wideInteger(std::int32_t value) {
    return number_formats::integerField(value, number_formats::wideRealWidth);
}

// Whether the first pass found the variable, and nobody has switched it off since.
bool isShown(const Domain& domain, std::string_view key, Option option) {
    const OutputVar* var = model::findOutputVar(domain, key);
    return var && var->firstExists && model::enabled(domain, option);
}

double currentTime() {
    double time = 0;
    const int status = free_form::readReal(run.currentTimeText, time);
    if (status != io_layer::ok)
        error::input_error_stat(status,
                                "Error reading file: " + run.timeFile +
                                    "\nThe time stamp is no number: " + run.currentTimeText);
    return time;
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

void writePoints(const Output& out) {
    const Domain& domain = out.domain;
    const std::size_t title =
        run.numTitleLines < 2 ? 1 : static_cast<std::size_t>(run.numTitleLines);
    line(out, "# vtk DataFile Version 1.0");
    line(out, run.titleLines[title - 1]);
    line(out, "ASCII");
    line(out, "");
    line(out, "DATASET UNSTRUCTURED_GRID");
    line(out, "FIELD FieldData 1");
    line(out, "TIME 1 1 double");
    line(out, wideReal(currentTime()));
    line(out, "POINTS " + count(domain.nnTruncated) + " double");
    for (std::size_t i = 0; i < static_cast<std::size_t>(domain.nnTruncated); ++i)
        line(out,
             wideReal(domain.x[i]) + " " + wideReal(domain.y[i]) + " " + wideReal(domain.z[i]));
}

// Which slots of an element stand in its record, from 0, and the cell's type. Triangles and prisms
// go out as quadrilaterals and bricks with corners that fall together.
struct Shape {
    int length;
    std::array<std::size_t, 8> slots;
    int type;
};

std::optional<Shape> shapeOf(std::int32_t nodesPerElement) {
    switch (nodesPerElement) {
    case 2:
        return Shape{2, {0, 1}, 3};
    case 3:
        return Shape{4, {0, 1, 2, 2}, 8};
    case 4:
        return Shape{4, {0, 1, 2, 3}, 9};
    case 6:
        return Shape{8, {0, 1, 2, 2, 3, 4, 5, 5}, 12};
    case 8:
        return Shape{8, {0, 1, 2, 3, 4, 5, 6, 7}, 12};
    default:
        return {};
    }
}

const std::int32_t* slotsOf(const Domain& domain, std::size_t element) {
    return domain.elementNodes.data() + element * static_cast<std::size_t>(domain.nodesPerElement);
}

Shape shapeOfElement(const Domain& domain, const Shape& shape, std::size_t element) {
    const bool triangle = domain.nodesPerElement == 4 && slotsOf(domain, element)[3] == 0;
    return triangle ? *shapeOf(3) : shape;
}

// Only the first ones as many as are included are looked at, of which some may not be.
template<class Use>
void forEachCell(const Domain& domain, const Use& use) {
    for (std::size_t e = 0; e < static_cast<std::size_t>(domain.neTruncated); ++e)
        if (domain.elementIncluded[e]) use(e);
}

std::string cellRecord(const Domain& domain, const Shape& shape, std::size_t element) {
    std::string record = std::to_string(shape.length);
    for (int k = 0; k < shape.length; ++k) {
        const std::int32_t node =
            slotsOf(domain, element)[shape.slots[static_cast<std::size_t>(k)]];
        const std::int32_t renumbered =
            node < 1 ? 0 : domain.nodeRenumber[static_cast<std::size_t>(node) - 1];
        record += count(renumbered - 1) + " ";
    }
    return record;
}

void writeCells(const Output& out) {
    const Domain& domain = out.domain;
    const std::optional<Shape> shape = shapeOf(domain.nodesPerElement);
    if (shape) {
        const std::string numbers = count(std::int64_t{domain.neTruncated} * (shape->length + 1));
        const std::string cells = "CELLS " + count(domain.neTruncated);
        line(out, "");
        if (shape->length < 8) {
            line(out, cells + " " + numbers);
        } else {
            line(out, cells);
            line(out, numbers);
        }
        forEachCell(domain, [&](std::size_t e) {
            line(out, cellRecord(domain, shapeOfElement(domain, *shape, e), e));
        });
    }
    line(out, "");
    line(out, "CELL_TYPES " + count(domain.neTruncated));
    if (!shape) return;
    forEachCell(domain, [&](std::size_t e) {
        line(out, std::to_string(shapeOfElement(domain, *shape, e).type));
    });
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
    const std::vector<float> zeros(static_cast<std::size_t>(out.domain.nodeCount));
    for (std::size_t species = 0; species < run.speciesNames.size(); ++species) {
        if (species < var.columns.size())
            writeColumn(out, var, species, nodes(out.domain), label);
        else
            write_paraview_array(zeros, nodes(out.domain), label, ++out.dataIndex, out.unit);
    }
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
    writePoints(out);
    writeCells(out);
    writeNodeData(out);
    writeElementData(out);
    file_units::freeUnit(out.unit);
}

} // namespace paraview
