#include "meshrake/variables/common_node_table.hpp"

#include "meshrake/mesh_shaping/mesh_columns.hpp"
#include "meshrake/variables/lent_columns.hpp"
#include "meshrake/variables/own_ways.hpp"

namespace variables {

using namespace mesh_shaping;
using namespace model::tags;
using enum model::Option;
using enum plot_data::Location;
using plot_data::constantRead;

namespace {

constexpr auto single = model::DataType::single;
constexpr auto longInt = model::DataType::longInt;

// The plot files of these domains hold few columns of their own. A row that goes by "lent" steps
// shows the column that pm has under the same key.
// clang-format off
const VariableRow table[] = {
    {.key = "coordinates", .domains = anyDomain, .unit = "L",
     .columns = {{{"X", "x"}, {"Y", "y"}, {"Z", "z"}}}, .init = coordinatesInit,
     .read = constantRead, .write = coordinatesWrite},
    {.key = "zone", .domains = anyDomain, .stem = "tv_zone_", .type = longInt,
     .location = element,
     .columns = {{{"Zone", "zone (cell centred)"}}}, .init = zoneInit, .read = zoneRead,
     .write = zoneWrite},
    {.key = "nodeNumber", .domains = anyDomain, .type = longInt,
     .columns = {{{"3DNode#", "3D node #"}}}, .arrayText = "3D node id temporary array",
     .init = nodeNumberInit, .read = constantRead, .write = write3DNodeNumber},
    {.key = "head", .domains = anyDomain, .option = heads, .unit = "L",
     .columns = {{{"Head", "head"}, {"Pressure Head", "pressure head"}}},
     .init = lentHeadInit, .read = lentRead, .write = lentWrite},
    {.key = "maxWaterDepth", .domains = olf | chan, .option = maxWaterDepth,
     .stem = "max_depth_", .unit = "L",
     .columns = {{{"MaxDepth", "max water depth"}}}, .arrayText = "max water depth array",
     .laterFallback = true},
    {.key = "sat", .domains = anyDomain, .option = saturations, .type = single, .unit = "1",
     .columns = {{{"Saturation", "saturation"}}},
     .init = lentInit, .read = lentRead, .write = lentWrite},
    {.key = "iceSat", .domains = anyDomain, .option = iceSaturation, .type = single, .unit = "1",
     .columns = {{{"Ice Saturation", "ice saturation"}}},
     .init = lentInit, .read = lentRead, .write = lentWrite},
    {.key = "freezeThawTemp", .domains = anyDomain, .option = freezingThawingTemperature,
     .unit = "K",
     .columns = {{{"Freezing-thawing temperature", "freezing-thawing temperature"}}},
     .init = lentInit, .read = lentRead, .write = lentWrite},
    {.key = "newtonResid", .domains = anyDomain, .option = newtonResidual, .unit = "L^3 * T^-1",
     .columns = {{{"Newton residual", "newton residual"}}},
     .init = lentInit, .read = lentRead, .write = lentWrite},
    {.key = "flowRate", .domains = olf, .option = flowRates, .stem = "flow_rate_",
     .unit = "L^3 * T^-1",
     .columns = {{{"Flow Rate", "flow rate"}}}, .arrayText = "flow rate array"},
    {.key = "vel", .domains = anyDomain, .option = linearVelocities, .stem = "v_",
     .type = single, .location = element, .unit = "L * T^-1",
     .columns = {{{"Vx", "x linear velocity (cell centred)"},
                  {"Vy", "y linear velocity (cell centred)"},
                  {"Vz", "z linear velocity (cell centred)"}}},
     .arrayText = "linear velocity arrays"},
    {.key = "friction", .domains = olf, .option = friction, .stem = "friction_",
     .location = element, .unit = "L^-1/3 * T",
     .columns = {{{"nx", "x friction (cell centred)"}, {"ny", "y friction (cell centred)"}}},
     .arrayText = "xfriction and yfriction arrays"},
    {.key = "permafrost", .domains = anyDomain, .option = permafrost, .stem = "permafrost_",
     .type = single, .location = element, .unit = "L * T^-1",
     .columns = {{{"Permafrost", "Permafrost (cell centred)"}}},
     .arrayText = "permafrost array"},
    {.key = "conc", .domains = anyDomain, .option = concentrations, .unit = "M * L^-3",
     .init = lentConcInit, .read = lentRead, .write = lentWrite},
    {.key = "aperture", .domains = frac, .option = aperture, .location = element, .unit = "L",
     .columns = {{{"Aperture", "aperture (cell centred)"}}}, .init = meshColumnInit,
     .read = constantRead, .write = apertureWrite},
};
// clang-format on

} // namespace

std::span<const VariableRow> commonNodeTable() {
    return table;
}

} // namespace variables
