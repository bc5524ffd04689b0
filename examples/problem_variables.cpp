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
constexpr TagSet within = frac | chan | drains; // the ground, in faces and lines
constexpr TagSet any = pm | dual | olf | within;

// Whether the default set has the variable.
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

// The file of the 3D evaporation changes a letter of its name after the first output time. The
// header text of ElemK begins with the number by which a reader tells its form.
// clang-format off
const Variable table[] = {
// stem               domains     set    type   c      L   T  field                           meaning
{"head_",             pm,         usual, R8, N, 1,      1,  0, water::pm_head,                 "hydraulic head"},
{"head_",             dual,       usual, R8, N, 1,      1,  0, water::dual_head,               "hydraulic head"},
{"head_",             olf,        usual, R8, N, 1,      1,  0, water::surface_head,            "hydraulic head"},
{"head_",             frac,       usual, R8, N, 1,      1,  0, water::fracture_head,           "hydraulic head"},
{"head_",             chan,       usual, R8, N, 1,      1,  0, water::channel_head,            "hydraulic head"},
{"head_",             well,       usual, R8, N, 1,      1,  0, water::well_head,               "hydraulic head"},
{"head_",             tile,       usual, R8, N, 1,      1,  0, water::tile_head,               "hydraulic head"},
{"incised_head_",     chan,       extra, R8, N, 1,      1,  0, water::incised_head,            "head in incised channel"},
{"max_depth_",        olf | chan, usual, R8, N, 1,      1,  0, water::max_depth,               "maximum water depth"},
{"envhead_",          pm,         extra, R8, N, 1,      1,  0, water::environmental_head,      "environmental head"},
{"sat_",              pm,         usual, R4, N, 1,      0,  0, water::pm_saturation,           "saturation"},
{"sat_",              dual,       usual, R4, N, 1,      0,  0, water::dual_saturation,         "saturation"},
{"sat_",              frac,       usual, R4, N, 1,      0,  0, water::fracture_saturation,     "saturation"},
{"vwc_",              pm,         extra, R8, N, 1,      0,  0, water::water_content,           "volumetric water content"},
{"ice_sat_",          pm | dual,  extra, R4, N, 1,      0,  0, water::ice_saturation,          "ice saturation"},
{"freeze_thaw_temp_", pm,         extra, R8, N, 1,      0,  0, ground::temperature,            "ground temperature"},
{"newton_residual_",  pm,         extra, R8, N, 1,      3, -1, water::newton_residual,         "Newton residual"},
{"flow_rate_",        olf,        extra, R8, N, 1,      3, -1, water::flow_rate,               "surface flow rate"},
{"v_",                pm,         usual, R4, E, 3,      1, -1, water::pm_velocity,             "linear velocity"},
{"v_",                dual,       usual, R4, E, 3,      1, -1, water::dual_velocity,           "linear velocity"},
{"v_",                frac,       usual, R4, E, 3,      1, -1, water::fracture_velocity,       "linear velocity"},
{"v_",                olf | chan, usual, R4, E, 3,      1, -1, water::surface_velocity,        "linear velocity"},
{"v_",                well,       usual, R4, E, 3,      1, -1, water::well_velocity,           "linear velocity"},
{"v_",                tile,       usual, R4, E, 3,      1, -1, water::tile_velocity,           "linear velocity"},
{"friction_",         olf,        extra, R8, E, 2,  -1/3.,  1, water::friction,                "surface friction"},
{"q_",                pm,         extra, R4, E, 3,      1, -1, water::darcy_flux,              "Darcy flux"},
{"tvk_",              pm,         extra, R4, E, 3,      1, -1, ground::changing_conductivity,  "conductivity in time"},
{"tv_por_",           pm,         extra, R4, E, 1,      0,  0, ground::changing_porosity,      "porosity in time"},
{"tv_stor_",          pm,         extra, R8, E, 1,     -1,  0, ground::changing_storage,       "specific storage in time"},
{"tv_zone_",          any,        extra, I4, E, 1,      0,  0, ground::changing_zone,          "zone in time"},
{"mine_advance_",     pm,         extra, I4, E, 1,      0,  0, ground::mine_strip,             "mined strip"},
{"Peclet_",           any,        extra, R4, E, 3,      0,  0, water::peclet,                  "Peclet number"},
{"DiffPeclet_",       any,        extra, R4, E, 3,      0,  0, water::diffusion_peclet,        "diffusion Peclet number"},
{"ElemK_",            any,        extra, R8, E, 3,      1, -1, ground::conductivity,           "1 diagonal of conductivity", first},
{"ElemPor_",          any,        extra, R4, E, 1,      0,  0, ground::porosity,               "porosity", first},
{"ElemStor_",         any,        extra, R8, E, 1,     -1,  0, ground::specific_storage,       "specific storage", first},
{"ElemTort_",         any,        extra, R8, E, 1,      0,  0, ground::tortuosity,             "tortuosity", first},
{"ElemIbedFraction_", any,        extra, R8, E, 1,      0,  0, ground::interbed_fraction,      "compressible interbeds", first},
{"ElemVolume_",       any,        extra, R8, E, 1,      3,  0, ground::element_volume,         "element volume", first},
{"permafrost_",       any,        extra, R4, E, 1,      1, -1, ground::frozen_conductivity,    "permafrost"},
{"flux_",             olf,        extra, R8, N, 1,      1, -1, surface::specified_flux,        "specified flux"},
{"Rain_",             olf,        usual, R8, N, 1,      1, -1, surface::rain,                  "rain"},
{"PET_",              olf,        extra, R8, N, 1,      1, -1, surface::potential_et,          "potential evapotranspiration"},
{"lp_",               pm,         extra, R8, E, 1,     -3,  0, ground::location_probability,   "location probability"},
{"ETEvap_",           olf,        extra, R8, N, 1,      1, -1, surface::surface_evaporation,   "surface evaporation"},
{"ETPmEvap_",         olf,        extra, R8, N, 1,      1, -1, surface::ground_evaporation,    "subsurface evaporation"},
{"ETPmTranspire_",    olf,        extra, R8, N, 1,      1, -1, surface::ground_transpiration,  "subsurface transpiration"},
{"ETActual_",         olf,        usual, R8, N, 1,      1, -1, surface::actual_et,             "actual evapotranspiration"},
{"ETPMEvap3D_",       pm,         extra, R8, N, 1,      1, -1, surface::node_evaporation,      "3D evaporation", first},
{"ETPmEvap3D_",       pm,         extra, R8, N, 1,      1, -1, surface::node_evaporation,      "3D evaporation", later},
{"ETPmTranspire3D_",  pm,         extra, R8, N, 1,      1, -1, surface::node_transpiration,    "3D transpiration"},
{"snowdepth.",        olf,        extra, R8, E, 1,      1,  0, surface::snow_depth,            "snow depth"},
{"snowmelt.",         olf,        extra, R8, E, 1,      1, -1, surface::snow_melt,             "snowmelt"},
{"liquid_p.",         olf,        extra, R8, E, 1,      1, -1, surface::liquid_precipitation,  "liquid precipitation"},
{"solid_p.",          olf,        extra, R8, E, 1,      1, -1, surface::solid_precipitation,   "solid precipitation"},
{"snowcover.",        olf,        extra, R8, N, 1,      1,  0, surface::snow_elevation,        "snow cover elevation"},
{"ExchFlux_",         olf,        usual, R4, N, 1,      1, -1, surface::surface_exchange,      "exchange flux"},
{"ExchFlux_",         dual,       usual, R4, N, 1,      3, -1, surface::dual_exchange,         "exchange flux"},
{"ExchFlux_",         within,     usual, R4, N, 1,      1, -1, surface::line_exchange,         "exchange flux"},
{"ExchFlux_",         pm,         extra, R4, N, 1,      1, -1, surface::line_exchange,         "exchange flux"},
{"DualExchFlux_",     any,        extra, R4, N, 1,      1, -1, surface::macropore_exchange,    "exchange flux with dual"},
{"ExchFlux_pm2_",     any,        extra, R4, N, 1,      1, -1, surface::line_exchange,         "exchange flux with pm"},
{"ExchFlux_olf2_",    any,        extra, R4, N, 1,      1, -1, surface::surface_exchange,      "exchange flux with olf"},
{"fluid_density_",    pm,         extra, R8, N, 1,     -3,  0, ground::fluid_density,          "fluid density"},
{"water_age_",        any,        extra, R8, N, 1,      0,  1, ground::water_age,              "water age"},
{"water_age_ratio_",  any,        extra, R8, N, 1,      0,  0, ground::water_age_ratio,        "water age ratio"},
{"conc_",             pm,         usual, R8, N, 1,     -3,  0, transport::ground_concentration,        "concentration",          always, species},
{"conc_",             dual,       usual, R8, N, 1,     -3,  0, transport::macropore_concentration,     "concentration",          always, species},
{"conc_",             olf | chan, usual, R8, N, 1,     -3,  0, transport::surface_concentration,       "concentration",          always, species},
{"conc_",             frac,       usual, R8, N, 1,     -3,  0, transport::fracture_concentration,      "concentration",          always, species},
{"conc_",             drains,     usual, R8, N, 1,     -3,  0, transport::drain_concentration,         "concentration",          always, species},
{"concsolid_",        pm | dual,  usual, R8, N, 1,      0,  0, transport::attached_particles,          "attached particles",     always, particles},
{"iconc_",            any,        extra, R8, N, 1,     -3,  0, transport::immobile_concentration,      "immobile concentration", always, species},
{"ExchSol_",          olf,        extra, R4, N, 1,     -2, -1, transport::surface_exchange,            "solute exchange",        always, mobile},
{"ExchSol_",          any & ~olf, extra, R4, N, 1,     -2, -1, transport::line_exchange,               "solute exchange",        always, mobile},
{"ExchSolAdv_",       olf,        extra, R4, N, 1,     -2, -1, transport::surface_advection,           "advective exchange",     always, mobile},
{"ExchSolAdv_",       any & ~olf, extra, R4, N, 1,     -2, -1, transport::line_advection,              "advective exchange",     always, mobile},
{"DualExchSolAdv_",   any,        extra, R4, N, 1,     -2, -1, transport::macropore_advection,         "advective exchange",     always, mobile},
{"ExchSolDisp_",      olf,        extra, R4, N, 1,     -2, -1, transport::surface_dispersion,          "dispersive exchange",    always, mobile},
{"ExchSolDisp_",      any & ~olf, extra, R4, N, 1,     -2, -1, transport::line_dispersion,             "dispersive exchange",    always, mobile},
{"DualExchSolDisp_",  any,        extra, R4, N, 1,     -2, -1, transport::macropore_dispersion,        "dispersive exchange",    always, mobile},
{"conc_",             any,        extra, R8, N, 1,     -3,  0, transport::redox_capacity,              "redox capacity",         always, mobile, "-Redox"},
{"mass_sorbed_",      pm,         extra, R8, N, 1,      0,  0, transport::sorbed_mass,                 "mass sorbed",            always, heat},
{"hmc_",              any,        usual, R8, N, 1,      0,  0, transport::origin_fraction,             "part of the water",      always, origins},
{"hmc_",              any,        usual, R8, N, 1,      0,  0, transport::mixing_ratio,                "mixing ratio",           always, origin_sums, ".mixing_ratio"},
{"hmc_",              any,        usual, R8, N, 1,      0,  0, transport::mixing_error,                "error of the parts",     always, origin_sums, ".hmc_error"},
{"tvtopo_",           any,        extra, R8, N, 1,      1,  0, ground::moved_elevation,        "elevation"},
{"tvtopo_zone_",      pm,         extra, I4, E, 1,      0,  0, ground::moved_zone,             "zone of the moved ground"},
{"wall_node_",        pm | olf,   extra, I4, N, 1,      0,  0, ground::wall_number,            "cutoff wall number"},
{"wall_elem_",        pm | olf,   extra, I4, E, 1,      0,  0, ground::wall_number,            "cutoff wall number"},
};
// clang-format on

std::string lower_case(std::string text) {
    for (char& letter : text)
        letter = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
    return text;
}

// What the variable is asked for by: the stem without what joins it to the rest of the file name,
// and what tells it from another one of the same stem.
std::string bare_stem(const Variable& variable) {
    std::string stem = variable.stem;
    stem.pop_back();
    return *variable.tail == '.' ? stem : stem + variable.tail;
}

Variable in_form(Variable variable, bool full_tensor) {
    if (full_tensor && bare_stem(variable) == "ElemK") {
        variable.components = 6;
        variable.meaning = "3 full tensor of conductivity";
    }
    return variable;
}

bool is_known(const std::string& word) {
    if (word == "all" || word == "default") return true;
    return std::any_of(std::begin(table), std::end(table), [&word](const Variable& variable) {
        return lower_case(bare_stem(variable)) == word;
    });
}

bool has_what_it_is_about(const Variable& variable, const Given& given) {
    switch (variable.family) {
    case Family::one_file:
        return true;
    case Family::origins:
    case Family::origin_sums:
        return given.origins;
    default:
        return given.species;
    }
}

} // namespace

Selection select(const std::string& words, const Given& given) {
    Selection selection;
    std::set<std::string> wanted;
    std::istringstream list(words);
    for (std::string word; std::getline(list, word, ',');) {
        if (!is_known(lower_case(word)) && !selection.unknown) selection.unknown = word;
        wanted.insert(lower_case(word));
    }
    for (const Variable& variable : table) {
        const bool in_set =
            wanted.count("all") > 0 || (variable.usual && wanted.count("default") > 0);
        const bool by_name = wanted.count(lower_case(bare_stem(variable))) > 0;
        if (!in_set && !by_name) continue;
        if (has_what_it_is_about(variable, given)) {
            selection.variables.push_back(in_form(variable, given.full_tensor));
        } else if (by_name && !selection.lacking) {
            selection.lacking = bare_stem(variable);
        }
    }
    return selection;
}

bool is_at_nodes_of_pm(const Variable& variable) {
    if (variable.location != Location::node) return false;
    return std::any_of(std::begin(table), std::end(table), [&variable](const Variable& other) {
        return (other.domains & pm) != 0 && bare_stem(other) == bare_stem(variable);
    });
}

std::vector<std::string> stems() {
    std::vector<std::string> names;
    for (const Variable& variable : table) {
        const std::string stem = bare_stem(variable);
        if (names.empty() || lower_case(names.back()) != lower_case(stem)) names.push_back(stem);
    }
    return names;
}

} // namespace problem_variables
