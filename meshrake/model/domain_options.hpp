#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

// The options of a domain. All are enabled until a line of the control file disables them. The
// table has a row for each option, in the order of the control file template.
namespace model {

// Tags of the domains, one bit each, so that a row can name several.
using DomainSet = unsigned;
namespace tags {
inline constexpr DomainSet pm = 1, dual = 2, olf = 4, frac = 8, chan = 16, well = 32, tile = 64;
inline constexpr DomainSet anyDomain = pm | dual | olf | frac | chan | well | tile;
inline constexpr DomainSet addition = 128; // a block of instructions without a mesh

struct TagName {
    std::string_view name;
    DomainSet tag;
};

// In the order in which the domains are processed.
inline constexpr TagName names[] = {{"pm", pm},     {"dual", dual},        {"frac", frac},
                                    {"olf", olf},   {"well", well},        {"chan", chan},
                                    {"tile", tile}, {"addition", addition}};
} // namespace tags

enum class Option {
    layerNumbers,
    columnNumbers,
    elementThickness,
    cutoffWall,
    heads,
    pressureHeads,
    incisedHeads,
    environmentalHead,
    saturations,
    volumetricWaterContent,
    iceSaturation,
    linearVelocities,
    concentrations,
    immobileConcentrations,
    redoxCapacity,
    massSorbed,
    friction,
    pecletNumber,
    diffusionPecletNumber,
    elementK,
    elementPorosity,
    elementSpecificStorage,
    elementTortuosity,
    elementCompressibleFraction,
    elementVolume,
    aperture,
    permafrost,
    flux,
    tvk,
    timeVaryingPorosity,
    timeVaryingSpecificStorage,
    exchangeFlux,
    soluteExchange,
    et,
    localProbability,
    et3d,
    depthToWaterTable,
    maxWaterDepth,
    timeVaryingTopography,
    timeVaryingTopographyZones,
    rainAndSnowmelt,
    hmcFractions,
    flowRates,
    fluidDensity,
    freezingThawingTemperature,
    newtonResidual,
    mineAdvance,
    depthToWaterTable2d,
    waterAge,
    none // a variable that no option controls
};

inline constexpr std::size_t optionCount = static_cast<std::size_t>(Option::none);

struct OptionRow {
    Option option;
    std::string_view words; // of the label: "no <tag>" and these words
    DomainSet inTemplate;   // domains whose template block lists it
    Option cleared;         // option that the line disables; none: the line is not recognized
};

// Rows in the order of the enumeration.
extern const std::array<OptionRow, optionCount> optionTable;

// A control file line and the state of the option that it disables.
struct DomainOption {
    std::string label; // at most 60 characters, lower case
    bool enabled = true;
};

// Returns the control file line of the option, such as "no pm heads", cut at 60 characters.
std::string optionLabel(const OptionRow& row, std::string_view tag);

} // namespace model
