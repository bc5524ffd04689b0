#include "examples/problem_variables.hpp"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <set>
#include <sstream>

#include "examples/problem_ground.hpp"
#include "examples/problem_surface.hpp"
#include "examples/problem_transport.hpp"
#include "examples/problem_water.hpp"

namespace problem_variables {

using problem_domains::bit;
using problem_domains::Tag;
using problem_domains::TagSet;

namespace {

namespace ground = problem_ground;
namespace surface = problem_surface;
namespace transport = problem_transport;
namespace water = problem_water;

constexpr TagSet pm = bit(Tag::pm);
constexpr TagSet dual = bit(Tag::dual);
constexpr TagSet olf = bit(Tag::olf);
constexpr TagSet frac = bit(Tag::frac);
constexpr TagSet chan = bit(Tag::chan);
constexpr TagSet well = bit(Tag::well);
constexpr TagSet tile = bit(Tag::tile);
constexpr TagSet drains = well | tile;
constexpr TagSet within = frac | chan | drains; // faces and lines within the ground
constexpr TagSet any = pm | dual | olf | within;

// Membership in the default set.
constexpr bool usual = true;
constexpr bool extra = false;

constexpr Type R8 = Type::real64;
constexpr Type R4 = Type::real32;
constexpr Type I4 = Type::int32;
constexpr Location N = Location::node;
constexpr Location E = Location::element;
constexpr When always = When::always;
constexpr When first = When::first;
constexpr When later = When::later;
using enum Family;

// The file name of the 3D evaporation differs in one letter after the first output time. The header
// text of ElemK begins with the number that specifies its form to a reader.
// clang-format off
const Variable table[] = {
// stem               domains     set    type   c      L   T  field                           meaning
{"head_",             pm,         usual, R8, N, 1,      1,  0, water::pmHead,                 "hydraulic head"},
{"head_",             dual,       usual, R8, N, 1,      1,  0, water::dualHead,               "hydraulic head"},
{"head_",             olf,        usual, R8, N, 1,      1,  0, water::surfaceHead,            "hydraulic head"},
{"head_",             frac,       usual, R8, N, 1,      1,  0, water::fractureHead,           "hydraulic head"},
{"head_",             chan,       usual, R8, N, 1,      1,  0, water::channelHead,            "hydraulic head"},
{"head_",             well,       usual, R8, N, 1,      1,  0, water::wellHead,               "hydraulic head"},
{"head_",             tile,       usual, R8, N, 1,      1,  0, water::tileHead,               "hydraulic head"},
{"incised_head_",     chan,       extra, R8, N, 1,      1,  0, water::incisedHead,            "head in incised channel"},
{"max_depth_",        olf | chan, usual, R8, N, 1,      1,  0, water::maxDepth,               "maximum water depth"},
{"envhead_",          pm,         extra, R8, N, 1,      1,  0, water::environmentalHead,      "environmental head"},
{"sat_",              pm,         usual, R4, N, 1,      0,  0, water::pmSaturation,           "saturation"},
{"sat_",              dual,       usual, R4, N, 1,      0,  0, water::dualSaturation,         "saturation"},
{"sat_",              frac,       usual, R4, N, 1,      0,  0, water::fractureSaturation,     "saturation"},
{"vwc_",              pm,         extra, R8, N, 1,      0,  0, water::waterContent,           "volumetric water content"},
{"ice_sat_",          pm | dual,  extra, R4, N, 1,      0,  0, water::iceSaturation,          "ice saturation"},
{"freeze_thaw_temp_", pm,         extra, R8, N, 1,      0,  0, ground::temperature,            "ground temperature"},
{"newton_residual_",  pm,         extra, R8, N, 1,      3, -1, water::newtonResidual,         "Newton residual"},
{"flow_rate_",        olf,        extra, R8, N, 1,      3, -1, water::flowRate,               "surface flow rate"},
{"v_",                pm,         usual, R4, E, 3,      1, -1, water::pmVelocity,             "linear velocity"},
{"v_",                dual,       usual, R4, E, 3,      1, -1, water::dualVelocity,           "linear velocity"},
{"v_",                frac,       usual, R4, E, 3,      1, -1, water::fractureVelocity,       "linear velocity"},
{"v_",                olf | chan, usual, R4, E, 3,      1, -1, water::surfaceVelocity,        "linear velocity"},
{"v_",                well,       usual, R4, E, 3,      1, -1, water::wellVelocity,           "linear velocity"},
{"v_",                tile,       usual, R4, E, 3,      1, -1, water::tileVelocity,           "linear velocity"},
{"friction_",         olf,        extra, R8, E, 2,  -1/3.,  1, water::friction,                "surface friction"},
{"q_",                pm,         extra, R4, E, 3,      1, -1, water::darcyFlux,              "Darcy flux"},
{"tvk_",              pm,         extra, R4, E, 3,      1, -1, ground::changingConductivity,  "conductivity in time"},
{"tv_por_",           pm,         extra, R4, E, 1,      0,  0, ground::changingPorosity,      "porosity in time"},
{"tv_stor_",          pm,         extra, R8, E, 1,     -1,  0, ground::changingStorage,       "specific storage in time"},
{"tv_zone_",          any,        extra, I4, E, 1,      0,  0, ground::changingZone,          "zone in time"},
{"mine_advance_",     pm,         extra, I4, E, 1,      0,  0, ground::mineStrip,             "mined strip"},
{"Peclet_",           any,        extra, R4, E, 3,      0,  0, water::peclet,                  "Peclet number"},
{"DiffPeclet_",       any,        extra, R4, E, 3,      0,  0, water::diffusionPeclet,        "diffusion Peclet number"},
{"ElemK_",            any,        extra, R8, E, 3,      1, -1, ground::conductivity,           "1 diagonal of conductivity", first},
{"ElemPor_",          any,        extra, R4, E, 1,      0,  0, ground::porosity,               "porosity", first},
{"ElemStor_",         any,        extra, R8, E, 1,     -1,  0, ground::specificStorage,       "specific storage", first},
{"ElemTort_",         any,        extra, R8, E, 1,      0,  0, ground::tortuosity,             "tortuosity", first},
{"ElemIbedFraction_", any,        extra, R8, E, 1,      0,  0, ground::interbedFraction,      "compressible interbeds", first},
{"ElemVolume_",       any,        extra, R8, E, 1,      3,  0, ground::elementVolume,         "element volume", first},
{"permafrost_",       any,        extra, R4, E, 1,      1, -1, ground::frozenConductivity,    "permafrost"},
{"flux_",             olf,        extra, R8, N, 1,      1, -1, surface::specifiedFlux,        "specified flux"},
{"Rain_",             olf,        usual, R8, N, 1,      1, -1, surface::rain,                  "rain"},
{"PET_",              olf,        extra, R8, N, 1,      1, -1, surface::potentialEt,          "potential evapotranspiration"},
{"lp_",               pm,         extra, R8, E, 1,     -3,  0, ground::locationProbability,   "location probability"},
{"ETEvap_",           olf,        extra, R8, N, 1,      1, -1, surface::surfaceEvaporation,   "surface evaporation"},
{"ETPmEvap_",         olf,        extra, R8, N, 1,      1, -1, surface::groundEvaporation,    "subsurface evaporation"},
{"ETPmTranspire_",    olf,        extra, R8, N, 1,      1, -1, surface::groundTranspiration,  "subsurface transpiration"},
{"ETActual_",         olf,        usual, R8, N, 1,      1, -1, surface::actualEt,             "actual evapotranspiration"},
{"ETPMEvap3D_",       pm,         extra, R8, N, 1,      1, -1, surface::nodeEvaporation,      "3D evaporation", first},
{"ETPmEvap3D_",       pm,         extra, R8, N, 1,      1, -1, surface::nodeEvaporation,      "3D evaporation", later},
{"ETPmTranspire3D_",  pm,         extra, R8, N, 1,      1, -1, surface::nodeTranspiration,    "3D transpiration"},
{"snowdepth.",        olf,        extra, R8, E, 1,      1,  0, surface::snowDepth,            "snow depth"},
{"snowmelt.",         olf,        extra, R8, E, 1,      1, -1, surface::snowMelt,             "snowmelt"},
{"liquid_p.",         olf,        extra, R8, E, 1,      1, -1, surface::liquidPrecipitation,  "liquid precipitation"},
{"solid_p.",          olf,        extra, R8, E, 1,      1, -1, surface::solidPrecipitation,   "solid precipitation"},
{"snowcover.",        olf,        extra, R8, N, 1,      1,  0, surface::snowElevation,        "snow cover elevation"},
{"ExchFlux_",         olf,        usual, R4, N, 1,      1, -1, surface::surfaceExchange,      "exchange flux"},
{"ExchFlux_",         dual,       usual, R4, N, 1,      3, -1, surface::dualExchange,         "exchange flux"},
{"ExchFlux_",         within,     usual, R4, N, 1,      1, -1, surface::lineExchange,         "exchange flux"},
{"ExchFlux_",         pm,         extra, R4, N, 1,      1, -1, surface::lineExchange,         "exchange flux"},
{"DualExchFlux_",     any,        extra, R4, N, 1,      1, -1, surface::macroporeExchange,    "exchange flux with dual"},
{"ExchFlux_pm2_",     any,        extra, R4, N, 1,      1, -1, surface::lineExchange,         "exchange flux with pm"},
{"ExchFlux_olf2_",    any,        extra, R4, N, 1,      1, -1, surface::surfaceExchange,      "exchange flux with olf"},
{"fluid_density_",    pm,         extra, R8, N, 1,     -3,  0, ground::fluidDensity,          "fluid density"},
{"water_age_",        any,        extra, R8, N, 1,      0,  1, ground::waterAge,              "water age"},
{"water_age_ratio_",  any,        extra, R8, N, 1,      0,  0, ground::waterAgeRatio,        "water age ratio"},
{"conc_",             pm,         usual, R8, N, 1,     -3,  0, transport::groundConcentration,        "concentration",          always, species},
{"conc_",             dual,       usual, R8, N, 1,     -3,  0, transport::macroporeConcentration,     "concentration",          always, species},
{"conc_",             olf | chan, usual, R8, N, 1,     -3,  0, transport::surfaceConcentration,       "concentration",          always, species},
{"conc_",             frac,       usual, R8, N, 1,     -3,  0, transport::fractureConcentration,      "concentration",          always, species},
{"conc_",             drains,     usual, R8, N, 1,     -3,  0, transport::drainConcentration,         "concentration",          always, species},
{"concsolid_",        pm | dual,  usual, R8, N, 1,      0,  0, transport::attachedParticles,          "attached particles",     always, particles},
{"iconc_",            any,        extra, R8, N, 1,     -3,  0, transport::immobileConcentration,      "immobile concentration", always, species},
{"ExchSol_",          olf,        extra, R4, N, 1,     -2, -1, transport::surfaceExchange,            "solute exchange",        always, mobile},
{"ExchSol_",          any & ~olf, extra, R4, N, 1,     -2, -1, transport::lineExchange,               "solute exchange",        always, mobile},
{"ExchSolAdv_",       olf,        extra, R4, N, 1,     -2, -1, transport::surfaceAdvection,           "advective exchange",     always, mobile},
{"ExchSolAdv_",       any & ~olf, extra, R4, N, 1,     -2, -1, transport::lineAdvection,              "advective exchange",     always, mobile},
{"DualExchSolAdv_",   any,        extra, R4, N, 1,     -2, -1, transport::macroporeAdvection,         "advective exchange",     always, mobile},
{"ExchSolDisp_",      olf,        extra, R4, N, 1,     -2, -1, transport::surfaceDispersion,          "dispersive exchange",    always, mobile},
{"ExchSolDisp_",      any & ~olf, extra, R4, N, 1,     -2, -1, transport::lineDispersion,             "dispersive exchange",    always, mobile},
{"DualExchSolDisp_",  any,        extra, R4, N, 1,     -2, -1, transport::macroporeDispersion,        "dispersive exchange",    always, mobile},
{"conc_",             any,        extra, R8, N, 1,     -3,  0, transport::redoxCapacity,              "redox capacity",         always, mobile, "-Redox"},
{"mass_sorbed_",      pm,         extra, R8, N, 1,      0,  0, transport::sorbedMass,                 "mass sorbed",            always, heat},
{"hmc_",              any,        usual, R8, N, 1,      0,  0, transport::originFraction,             "part of the water",      always, origins},
{"hmc_",              any,        usual, R8, N, 1,      0,  0, transport::mixingRatio,                "mixing ratio",           always, originSums, ".mixing_ratio"},
{"hmc_",              any,        usual, R8, N, 1,      0,  0, transport::mixingError,                "error of the parts",     always, originSums, ".hmc_error"},
{"tvtopo_",           any,        extra, R8, N, 1,      1,  0, ground::movedElevation,        "elevation"},
{"tvtopo_zone_",      pm,         extra, I4, E, 1,      0,  0, ground::movedZone,             "zone of the moved ground"},
{"wall_node_",        pm | olf,   extra, I4, N, 1,      0,  0, ground::wallNumber,            "cutoff wall number"},
{"wall_elem_",        pm | olf,   extra, I4, E, 1,      0,  0, ground::wallNumber,            "cutoff wall number"},
};
// clang-format on

std::string lowerCase(std::string text) {
    for (char& letter : text)
        letter = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
    return text;
}

// Returns the word that selects the variable: the stem without its separator, and a tail that
// distinguishes it from another variable with the same stem.
std::string bareStem(const Variable& variable) {
    std::string stem = variable.stem;
    stem.pop_back();
    return *variable.tail == '.' ? stem : stem + variable.tail;
}

Variable withTensorForm(Variable variable, bool fullTensor) {
    if (fullTensor && bareStem(variable) == "ElemK") {
        variable.components = 6;
        variable.meaning = "3 full tensor of conductivity";
    }
    return variable;
}

bool isKnown(const std::string& word) {
    if (word == "all" || word == "default") return true;
    return std::any_of(std::begin(table), std::end(table), [&word](const Variable& variable) {
        return lowerCase(bareStem(variable)) == word;
    });
}

bool isAvailable(const Variable& variable, const ProblemContents& contents) {
    switch (variable.family) {
    case Family::oneFile:
        return true;
    case Family::origins:
    case Family::originSums:
        return contents.origins;
    default:
        return contents.species;
    }
}

} // namespace

Selection select(const std::string& words, const ProblemContents& contents) {
    Selection selection;
    std::set<std::string> selected;
    std::istringstream list(words);
    for (std::string word; std::getline(list, word, ',');) {
        if (!isKnown(lowerCase(word)) && !selection.unknown) selection.unknown = word;
        selected.insert(lowerCase(word));
    }
    for (const Variable& variable : table) {
        const bool inSet =
            selected.count("all") > 0 || (variable.usual && selected.count("default") > 0);
        const bool byName = selected.count(lowerCase(bareStem(variable))) > 0;
        if (!inSet && !byName) continue;
        if (isAvailable(variable, contents)) {
            selection.variables.push_back(withTensorForm(variable, contents.fullTensor));
        } else if (byName && !selection.unavailable) {
            selection.unavailable = bareStem(variable);
        }
    }
    return selection;
}

bool isAtNodesOfPm(const Variable& variable) {
    if (variable.location != Location::node) return false;
    return std::any_of(std::begin(table), std::end(table), [&variable](const Variable& other) {
        return (other.domains & pm) != 0 && bareStem(other) == bareStem(variable);
    });
}

std::vector<std::string> stems() {
    std::vector<std::string> names;
    for (const Variable& variable : table) {
        const std::string stem = bareStem(variable);
        if (names.empty() || lowerCase(names.back()) != lowerCase(stem)) names.push_back(stem);
    }
    return names;
}

} // namespace problem_variables
