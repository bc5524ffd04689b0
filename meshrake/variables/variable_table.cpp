#include "meshrake/variables/variable_table.hpp"

#include "meshrake/mesh_shaping/depth_to_table.hpp"
#include "meshrake/mesh_shaping/mesh_columns.hpp"
#include "meshrake/variables/own_ways.hpp"

#include <array>

namespace variables {

using namespace mesh_shaping;
using enum model::Option;
using enum plot_data::Location;
using enum plot_data::Timing;
using namespace model::tags;
using plot_data::constantRead;

namespace {

constexpr auto single = model::DataType::single;
constexpr auto real8 = model::DataType::real8;
constexpr auto longInt = model::DataType::longInt;
constexpr auto noOption = model::Option::none;

// One variable to a row. What a row leaves out: 64-bit reals at the nodes, one file for each output
// time, no option, no unit.
// clang-format off
const VariableRow table[] = {
    // Mesh
    {.key = "coordinates", .domains = anyDomain, .unit = "L",
     .columns = {{{"X", "x"}, {"Y", "y"}, {"Z", "z"}}}, .init = coordinatesInit,
     .read = constantRead, .write = coordinatesWrite},
    {.key = "zone", .domains = anyDomain, .stem = "tv_zone_", .type = longInt,
     .location = element,
     .columns = {{{"Zone", "zone (cell centred)"}}}, .init = zoneInit, .read = zoneRead,
     .write = zoneWrite},
    {.key = "nodeNumber", .domains = anyDomain & ~pm, .type = longInt,
     .columns = {{{"3DNode#", "3D node #"}}}, .arrayText = "3D node id temporary array",
     .init = nodeNumberInit, .read = constantRead, .write = write3DNodeNumber},
    {.key = "layerNumber", .domains = pm, .option = layerNumbers, .type = longInt,
     .location = element,
     .columns = {{{"Layer Number", "Layer #"}}},
     .arrayText = "3D layer number temporary array", .init = meshColumnInit,
     .read = constantRead, .write = writeLayerNumber},
    {.key = "columnNumber", .domains = pm, .option = columnNumbers, .type = longInt,
     .location = element,
     .columns = {{{"Column Number", "Column #"}}},
     .arrayText = "3D column number temporary array", .init = meshColumnInit,
     .read = constantRead, .write = writeColumnNumber},
    {.key = "thickness", .domains = pm, .option = elementThickness, .location = element,
     .columns = {{{"Thickness", "Thickness"}}},
     .arrayText = "3D column number temporary array", .init = meshColumnInit,
     .read = constantRead, .write = writeElementThickness},
    {.key = "wallNode", .domains = pm | olf, .option = cutoffWall, .stem = "wall_node_",
     .type = longInt,
     .columns = {{{"Wall Node Number", "Wall Node Number"}}},
     .arrayText = "Cutoff wall node array", .timing = firstPass},
    {.key = "wallElement", .domains = pm | olf, .option = cutoffWall, .stem = "wall_elem_",
     .type = longInt, .location = element,
     .columns = {{{"Wall Element Label", "Wall Element Label"}}},
     .arrayText = "Cutoff wall element array", .timing = firstPass},
    {.key = "depth2Surf", .domains = pm, .unit = "L",
     .columns = {{{"Depth2Surf", "Depth to surf"}}}, .arrayText = "Depth to surface array",
     .init = depth2SurfInit, .read = constantRead},

    // Heads and saturations
    {.key = "incHead", .domains = chan, .option = incisedHeads, .stem = "incised_head_",
     .unit = "L",
     .columns = {{{"Incised Head", "incised head"}}}, .arrayText = "incised head array"},
    {.key = "head", .domains = anyDomain, .option = heads, .stem = "head_", .unit = "L",
     .columns = {{{"Head", "head"}}}, .arrayText = "head array", .init = headInit,
     .read = headRead, .write = headWrite},
    {.key = "maxWaterDepth", .domains = olf | chan, .option = maxWaterDepth,
     .stem = "max_depth_", .unit = "L",
     .columns = {{{"MaxDepth", "max water depth"}}}, .arrayText = "max water depth array",
     .laterFallback = true},
    {.key = "envH", .domains = pm, .option = environmentalHead, .stem = "envhead_", .unit = "L",
     .columns = {{{"Environmental Head", "environmental head"}}},
     .arrayText = "environmental head array"},
    {.key = "sat", .domains = pm | dual | frac, .option = saturations, .stem = "sat_",
     .type = single, .unit = "1",
     .columns = {{{"Sat", "saturation"}}}, .arrayText = "saturation array"},
    {.key = "vwc", .domains = pm, .option = volumetricWaterContent, .stem = "vwc_", .unit = "1",
     .columns = {{{"VWC", "volumetric water content"}}},
     .arrayText = "volumetric water content array", .laterFallback = true},
    {.key = "depth2gwt", .domains = pm, .option = depthToWaterTable, .unit = "L",
     .columns = {{{"Depth2GWT", "depth to groundwater 3d"}}},
     .arrayText = "depth to groundwater table array", .init = depth2gwtInit,
     .read = depth2gwtRead},
    {.key = "depth2gwt2d", .domains = pm, .option = depthToWaterTable2d, .unit = "L",
     .columns = {{{"Depth2GWT2D", "depth to groundwater 2d"}}},
     .arrayText = "2d depth to groundwater table array", .init = depth2gwt2dInit,
     .read = depth2gwt2dRead},
    {.key = "iceSat", .domains = pm, .option = iceSaturation, .stem = "ice_sat_", .type = single,
     .unit = "1",
     .columns = {{{"IceSat", "ice saturation"}}}, .arrayText = "ice saturation array"},
    {.key = "iceSatDual", .domains = dual, .option = iceSaturation, .stem = "ice_sat_",
     .type = single, .unit = "1",
     .columns = {{{"IceSatDual", "ice saturation dual"}}},
     .arrayText = "dual ice saturation array"},
    {.key = "freezeThawTemp", .domains = pm, .option = freezingThawingTemperature,
     .stem = "freeze_thaw_temp_", .unit = "K",
     .columns = {{{"Temperature", "freezing-thawing temperature"}}},
     .arrayText = "freezing-thawing temperature array"},
    {.key = "newtonResid", .domains = pm, .option = newtonResidual, .stem = "newton_residual_",
     .unit = "L^3 * T^-1",
     .columns = {{{"Newton Residual", "newton residual"}}},
     .arrayText = "Newton residual array"},
    {.key = "flowRate", .domains = olf, .option = flowRates, .stem = "flow_rate_",
     .unit = "L^3 * T^-1",
     .columns = {{{"Flow Rate", "flow rate"}}}, .arrayText = "flow rate array"},

    // Velocities and fluxes of the elements
    {.key = "vel", .domains = anyDomain, .option = linearVelocities, .stem = "v_",
     .type = single, .location = element, .unit = "L * T^-1",
     .columns = {{{"Vx", "x linear velocity (cell centred)"},
                  {"Vy", "y linear velocity (cell centred)"},
                  {"Vz", "z linear velocity (cell centred)"}}},
     .arrayText = "linear velocity arrays"},
    {.key = "friction", .domains = olf, .option = model::Option::friction, .stem = "friction_",
     .location = element, .unit = "L^-1/3 * T",
     .columns = {{{"nx", "x friction (cell centred)"}, {"ny", "y friction (cell centred)"}}},
     .arrayText = "xfriction and yfriction arrays"},
    {.key = "flux", .domains = pm, .option = flux, .stem = "q_", .type = single,
     .location = element, .unit = "L * T^-1",
     .columns = {{{"qx", "x flux (cell centred)"},
                  {"qy", "y flux (cell centred)"},
                  {"qz", "z flux (cell centred)"}}}, .arrayText = "Darcy velocity arrays"},

    // Properties that change with time
    {.key = "tvk", .domains = pm, .option = tvk, .stem = "tvk_", .type = single,
     .location = element, .unit = "L * T^-1",
     .columns = {{{"Time Varying Kxx", "tvkx (cell centred)"},
                  {"Time Varying Kyy", "tvky (cell centred)"},
                  {"Time Varying Kzz", "tvkz (cell centred)"}}},
     .arrayText = "time varying K arrays"},
    {.key = "tvPor", .domains = pm, .option = timeVaryingPorosity, .stem = "tv_por_",
     .type = single, .location = element, .unit = "1",
     .columns = {{{"Time Varying Porosity", "tvPor (cell centred)"}}},
     .arrayText = "time varying porosity array"},
    {.key = "tvStor", .domains = pm, .option = timeVaryingSpecificStorage, .stem = "tv_stor_",
     .location = element, .unit = "L^-1",
     .columns = {{{"Time Varying SpStor", "tvStor (cell centred)"}}},
     .arrayText = "time varying specific storage array"},
    {.key = "mineAdv", .domains = pm, .option = mineAdvance, .stem = "mine_advance_",
     .type = longInt, .location = element,
     .columns = {{{"mine_advance", "mine_advance (cell centred)"}}},
     .arrayText = "mine-advance array"},

    // Peclet numbers and properties that stay as they are
    {.key = "peclet", .domains = anyDomain, .option = pecletNumber, .stem = "Peclet_",
     .type = single, .location = element, .unit = "1",
     .columns = {{{"Peclet x", "Peclet x (cell centred)"},
                  {"Peclet y", "Peclet y (cell centred)"},
                  {"Peclet z", "Peclet z (cell centred)"}}},
     .arrayText = "peclet number arrays", .timing = firstPass},
    {.key = "diffPeclet", .domains = anyDomain, .option = diffusionPecletNumber,
     .stem = "DiffPeclet_", .type = single, .location = element, .unit = "1",
     .columns = {{{"DiffPeclet x", "Diffusion Peclet x (cell centred)"},
                  {"DiffPeclet y", "Diffusion Peclet y (cell centred)"},
                  {"DiffPeclet z", "Diffusion Peclet z (cell centred)"}}},
     .arrayText = "diffusion peclet number arrays", .timing = firstPass},
    {.key = "elemK", .domains = anyDomain, .option = elementK, .stem = "ElemK_",
     .location = element, .unit = "L * T^-1",
     .columns = {{{"Kxx", "Kxx (cell centred)"},
                  {"Kyy", "Kyy (cell centred)"},
                  {"Kzz", "Kzz (cell centred)"},
                  {"Kxy", "Kxy (cell centred)"},
                  {"Kyz", "Kyz (cell centred)"},
                  {"Kzx", "Kzx (cell centred)"}}}, .arrayText = "elemental K arrays",
     .timing = property, .init = elemKInit},
    {.key = "elemPor", .domains = anyDomain, .option = elementPorosity, .stem = "ElemPor_",
     .type = single, .location = element, .unit = "1",
     .columns = {{{"Porosity", "Porosity (cell centred)"}}},
     .arrayText = "elemental porosity array", .timing = property},
    {.key = "elemStor", .domains = anyDomain, .option = elementSpecificStorage,
     .stem = "ElemStor_", .location = element, .unit = "L^-1",
     .columns = {{{"SpStor", "Specific storage (cell centred)"}}},
     .arrayText = "elemental specific storage array", .timing = property},
    {.key = "elemTort", .domains = anyDomain, .option = elementTortuosity, .stem = "ElemTort_",
     .location = element, .unit = "1",
     .columns = {{{"Tortuosity", "Tortuosity (cell centred)"}}},
     .arrayText = "elemental tortuosity array", .timing = property},
    {.key = "elemIbedFraction", .domains = anyDomain, .option = elementCompressibleFraction,
     .stem = "ElemIbedFraction_", .location = element, .unit = "1",
     .columns = {{{"ElemIbedFraction", "IbedFractionosity (cell centred)"}}},
     .arrayText = "elemental ibed fraction array", .timing = property},
    {.key = "elemVolume", .domains = anyDomain, .option = elementVolume, .stem = "ElemVolume_",
     .location = element, .unit = "L^3",
     .columns = {{{"Volume", "Volume (cell centred)"}}},
     .arrayText = "elemental volume array", .timing = property},
    {.key = "permafrost", .domains = anyDomain, .option = permafrost, .stem = "permafrost_",
     .type = single, .location = element, .unit = "L * T^-1",
     .columns = {{{"Permafrost", "Permafrost (cell centred)"}}},
     .arrayText = "permafrost array"},

    // Fluxes at the surface
    {.key = "specFlux", .domains = olf, .stem = "flux_", .unit = "L * T^-1",
     .columns = {{{"Specified Flux", "Specified Flux"}}},
     .arrayText = "specified flux array"},
    {.key = "rain", .domains = olf, .stem = "Rain_", .unit = "L * T^-1",
     .columns = {{{"Rain", "Rain"}}}, .arrayText = "rain array"},
    {.key = "nPET", .domains = olf, .stem = "PET_", .unit = "L * T^-1",
     .columns = {{{"nodal PET", "Nodal PET"}}}, .arrayText = "nodal PET array"},
    {.key = "etEvap", .domains = olf, .option = et, .stem = "ETEvap_", .unit = "L * T^-1",
     .columns = {{{"Surface water evaporation", "surface water evaporation"}}},
     .arrayText = "evapotranspiration array"},
    {.key = "etPmEvap", .domains = olf, .option = et, .stem = "ETPmEvap_", .unit = "L * T^-1",
     .columns = {{{"Subsurface evaporation", "subsurface evaporation"}}},
     .arrayText = "evapotranspiration array"},
    {.key = "etPmTranspire", .domains = olf, .option = et, .stem = "ETPmTranspire_",
     .unit = "L * T^-1",
     .columns = {{{"Subsurface transpiration", "subsurface transpiration"}}},
     .arrayText = "evapotranspiration array"},
    {.key = "etActual", .domains = olf, .option = et, .stem = "ETActual_", .unit = "L * T^-1",
     .columns = {{{"Actual ET", "Actual ET"}}}, .arrayText = "evapotranspiration array"},
    {.key = "et3dEvap", .domains = pm, .option = et3d, .stem = "ETPMEvap3D_", .unit = "L * T^-1",
     .columns = {{{"3D Subsurface evaporation", "3D subsurface evaporation"}}},
     .arrayText = "evapotranspiration array", .init = et3dInit, .read = et3dRead},
    {.key = "et3dTranspire", .domains = pm, .option = et3d, .stem = "ETPmTranspire3D_",
     .unit = "L * T^-1",
     .columns = {{{"3D Subsurface transpiration", "3D subsurface transpiration"}}},
     .arrayText = "evapotranspiration array"},
    {.key = "rainSnowmelt", .domains = olf, .option = rainAndSnowmelt,
     .columns = {{{"Snowdepth", "snow depth (cell centred)"},
                  {"Snowmelt", "snowmelt (cell centred)"},
                  {"Liquid precipitation", "liquid precipitation (cell centred)"},
                  {"Solid precipitation", "solid precipitation (cell centred)"},
                  {"Snow cover Elevation", "snow cover"}}},
     .arrayText = "rain and snowmelt arrays", .init = rainSnowmeltInit, .read = rainSnowmeltRead,
     .write = rainSnowmeltWrite},

    // Exchange between domains
    {.key = "exchFluxDual", .domains = dual, .option = exchangeFlux, .stem = "ExchFlux_",
     .type = single, .unit = "L^3 * T^-1",
     .columns = {{{"Exchange flux", "exchange flux"}}}, .arrayText = "exchange flux array"},
    {.key = "exchFlux", .domains = anyDomain & ~dual, .option = exchangeFlux,
     .stem = "ExchFlux_", .type = single, .unit = "L * T^-1",
     .columns = {{{"Exchange flux", "exchange flux"}}}, .arrayText = "exchange flux array"},
    {.key = "dualExchFlux", .domains = anyDomain, .option = exchangeFlux,
     .stem = "DualExchFlux_", .type = single, .unit = "L * T^-1",
     .columns = {{{"Dual exchange flux", "dual exchange flux"}}},
     .arrayText = "exchange flux array"},
    {.key = "exchFluxPm", .domains = anyDomain, .option = exchangeFlux, .stem = "ExchFlux_pm2_",
     .type = single, .unit = "L * T^-1",
     .columns = {{{"Exchange flux Pm", "exchange flux pm"}}},
     .arrayText = "exchange flux array"},
    {.key = "exchFluxOlf", .domains = anyDomain, .option = exchangeFlux,
     .stem = "ExchFlux_olf2_", .type = single, .unit = "L * T^-1",
     .columns = {{{"Exchange flux Olf", "exchange flux olf"}}},
     .arrayText = "exchange flux array"},

    // Transport
    {.key = "fluidDensity", .domains = pm, .option = fluidDensity, .stem = "fluid_density_",
     .unit = "L^3 * T^-1",
     .columns = {{{"Fluid Density", "Fluid Density"}}}, .arrayText = "fluid density array"},
    {.key = "waterAge", .domains = anyDomain, .option = waterAge, .stem = "water_age_",
     .unit = "T",
     .columns = {{{"Water Age", "water age"}}}, .arrayText = "water age array"},
    {.key = "waterAgeRatio", .domains = anyDomain, .option = waterAge,
     .stem = "water_age_ratio_", .unit = "1",
     .columns = {{{"Water Age Ratio", "water age ratio"}}}, .arrayText = "water age array"},
    {.key = "aperture", .domains = frac, .option = aperture, .location = element, .unit = "L",
     .columns = {{{"Aperture", "aperture (cell centred)"}}}, .sharedLast = true,
     .init = meshColumnInit, .read = constantRead, .write = apertureWrite},
    {.key = "localProb", .domains = pm, .option = localProbability, .stem = "lp_",
     .location = element, .unit = "L^-3",
     .columns = {{{"LocationProbability", "location probability (cell centred)"}}},
     .arrayText = "local probability array"},
};
// clang-format on

} // namespace

std::span<const VariableRow> variableTable() {
    return table;
}

bool applies(const VariableRow& row, const Domain& domain) {
    return (row.domains & domain.tag) != 0 && model::enabled(domain, row.option);
}

void createOutputVars(Domain& domain) {
    domain.outputVars.assign(std::size(table), {});
    for (std::size_t i = 0; i < std::size(table); ++i) domain.outputVars[i].key = table[i].key;
}

} // namespace variables
