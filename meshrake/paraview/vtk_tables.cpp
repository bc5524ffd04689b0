#include "meshrake/paraview/vtk_tables.hpp"

namespace paraview {

using namespace model::tags;
using enum model::Option;

namespace {

// Environmental head has the name of ice saturation.
// clang-format off
constexpr ScalarRow nodeScalarRows[] = {
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

// Specific storage has the name of porosity.
constexpr ScalarRow elementScalarRows[] = {
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

constexpr FamilyRow familyRows[] = {
    {"conc", concentrations, &model::RunState::speciesNames},
    {"hmc", hmcFractions, &model::RunState::hmcFractionNames},
};

constexpr ArrayRow exchangeRows[] = {
    {"exchSolAdv", soluteExchange, "POINT_DATA,SCALARS adv_solute_exchange float"},
    {"exchSolDisp", soluteExchange, "POINT_DATA,SCALARS disp_solute_exchange float"},
};

constexpr ArrayRow vectorRows[] = {
    {"vel", linearVelocities, "CELL_DATA,VECTORS linear_velocity_xyz float"},
    {"peclet", pecletNumber, "CELL_DATA,VECTORS Peclet_xyz float"},
    {"diffPeclet", diffusionPecletNumber, "CELL_DATA,VECTORS Diffusion_Peclet_xyz float"},
};

} // namespace

std::span<const ScalarRow> nodeScalars() {
    return nodeScalarRows;
}
std::span<const FamilyRow> families() {
    return familyRows;
}
std::span<const ArrayRow> soluteExchanges() {
    return exchangeRows;
}
std::span<const ArrayRow> vectors() {
    return vectorRows;
}
std::span<const ScalarRow> elementScalars() {
    return elementScalarRows;
}

} // namespace paraview
