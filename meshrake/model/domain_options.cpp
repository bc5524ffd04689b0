#include "meshrake/model/domain_options.hpp"

#include "tvncommon/text/StringHelpers.hpp"

namespace model {

namespace {

using enum Option;
using namespace tags;

constexpr std::array<OptionRow, optionCount> rows{{
    {layerNumbers, " layer numbers", pm, layerNumbers},
    {columnNumbers, " column numbers", pm, columnNumbers},
    {elementThickness, " element thickness", pm, elementThickness},
    {cutoffWall, " cutoff wall", pm | olf, cutoffWall},
    {heads, " heads", anyDomain, heads},
    {pressureHeads, " pressure heads", anyDomain & ~(olf | chan), pressureHeads},
    {incisedHeads, " incised heads", chan, none},
    {environmentalHead, " environmental head", pm, environmentalHead},
    {saturations, " saturations", pm | dual | frac, saturations},
    {volumetricWaterContent, " volumetric water content", pm, volumetricWaterContent},
    {iceSaturation, " ice saturation", pm, iceSaturation},
    {linearVelocities, " linear velocities (vx, vy, vz)", anyDomain, linearVelocities},
    {concentrations, " concentrations", anyDomain, concentrations},
    {immobileConcentrations, " immobile/isotope fractionation concentrations", anyDomain,
     immobileConcentrations},
    {redoxCapacity, " redox capacity", anyDomain, redoxCapacity},
    {massSorbed, " mass sorbed", pm, massSorbed},
    {friction, " friction (nx, ny)", olf, friction},
    {pecletNumber, " peclet number", pm, pecletNumber},
    {diffusionPecletNumber, " diffusion peclet number", pm, diffusionPecletNumber},
    {elementK, " element k", pm | dual, elementK},
    {elementPorosity, " element porosity", pm, elementPorosity},
    {elementSpecificStorage, " element specific storage", pm, elementSpecificStorage},
    {elementTortuosity, " element tortuosity", pm, elementTortuosity},
    {elementCompressibleFraction, " element fraction of compressible interbeds", pm,
     elementCompressibleFraction},
    {elementVolume, " element volume", pm, elementVolume},
    {aperture, " aperture", frac, aperture},
    {permafrost, " permafrost", pm | frac, permafrost},
    {flux, " flux (qx, qy, qz)", pm, flux},
    {tvk, " tvk (kx, ky, kz)", pm, tvk},
    {timeVaryingPorosity, " time varying porosity", pm, timeVaryingPorosity},
    {timeVaryingSpecificStorage, " time varying specific storage", pm, timeVaryingPorosity},
    {exchangeFlux, "/pm exchange flux", anyDomain & ~pm, exchangeFlux},
    {soluteExchange, "/pm solute exchange", anyDomain & ~pm, soluteExchange},
    {et, " et", olf, et},
    {localProbability, " local probability", pm, localProbability},
    {et3d, " et3d", pm, et3d},
    {depthToWaterTable, " depth to water table", pm, depthToWaterTable},
    {maxWaterDepth, " max water depth", olf | chan, maxWaterDepth},
    {timeVaryingTopography, " time varying topography", pm | olf, none},
    {timeVaryingTopographyZones, " time varying topography zones", pm, none},
    {rainAndSnowmelt, " rain and snowmelt package", olf, rainAndSnowmelt},
    {hmcFractions, " hmc fractions", pm | olf | chan, hmcFractions},
    {flowRates, " flow rates", olf, flowRates},
    {fluidDensity, " fluid density", pm, fluidDensity},
    {freezingThawingTemperature, " freezing-thawing temperature", 0, freezingThawingTemperature},
    {newtonResidual, " newton residual", 0, newtonResidual},
    {mineAdvance, " mine advance", 0, mineAdvance},
    {depthToWaterTable2d, " depth to water table 2d", 0, depthToWaterTable2d},
    {waterAge, " water age", 0, waterAge},
}};

constexpr bool rowsFollowTheEnumeration() {
    for (std::size_t i = 0; i < rows.size(); ++i)
        if (static_cast<std::size_t>(rows[i].option) != i) return false;
    return true;
}
static_assert(rowsFollowTheEnumeration());

} // namespace

const std::array<OptionRow, optionCount> optionTable = rows;

std::string optionLabel(const OptionRow& row, std::string_view tag) {
    const std::string label = "no " + std::string(tag) + std::string(row.words);
    return std::string(StringHelpers::cut(label, 60));
}

} // namespace model
