#include "meshrake/variables/common_node_table.hpp"

#include "meshrake/variables/common_node_columns.hpp"
#include "meshrake/variables/variable_table.hpp"
#include "tvncommon/diagnostics/error.hpp"

#include <algorithm>
#include <array>

namespace variables {

using namespace model::tags;
using enum model::Option;
using plot_data::VariableRow;

namespace {

constexpr auto single = model::DataType::single;

// The row of the multi-node table with this key, for variables that are the same in both.
const VariableRow& rowOf(std::string_view key) {
    const auto table = variableTable();
    const auto it = std::ranges::find(table, key, &VariableRow::key);
    if (it == table.end()) error::fatalError("Unknown output variable: " + std::string(key));
    return *it;
}

} // namespace

// Rows with commonNode... steps have the values of the pm variable with the same key. Some of their
// names differ on purpose from those of the multi-node table, such as "Saturation" and "Sat".
// clang-format off
std::span<const VariableRow> commonNodeTable() {
    static const std::array table{
        rowOf("coordinates"),
        rowOf("zone"),
        rowOf("nodeNumber"),
        VariableRow{
            .key = "head", .domains = anyDomain, .option = heads, .unit = "L",
            .columns = {{{"Head", "head"}, {"Pressure Head", "pressure head"}}},
            .init = commonNodeHeadInit, .read = commonNodeRead, .write = commonNodeWrite},
        rowOf("maxWaterDepth"),
        VariableRow{
            .key = "sat", .domains = anyDomain, .option = saturations, .type = single,
            .unit = "1", .columns = {{{"Saturation", "saturation"}}},
            .init = commonNodeInit, .read = commonNodeRead, .write = commonNodeWrite},
        VariableRow{
            .key = "iceSat", .domains = anyDomain, .option = iceSaturation, .type = single,
            .unit = "1", .columns = {{{"Ice Saturation", "ice saturation"}}},
            .init = commonNodeInit, .read = commonNodeRead, .write = commonNodeWrite},
        VariableRow{
            .key = "freezeThawTemp", .domains = anyDomain, .option = freezingThawingTemperature,
            .unit = "K",
            .columns = {{{"Freezing-thawing temperature", "freezing-thawing temperature"}}},
            .init = commonNodeInit, .read = commonNodeRead, .write = commonNodeWrite},
        VariableRow{
            .key = "newtonResid", .domains = anyDomain, .option = newtonResidual,
            .unit = "L^3 * T^-1", .columns = {{{"Newton residual", "newton residual"}}},
            .init = commonNodeInit, .read = commonNodeRead, .write = commonNodeWrite},
        rowOf("flowRate"),
        rowOf("vel"),
        rowOf("friction"),
        rowOf("permafrost"),
        VariableRow{
            .key = "conc", .domains = anyDomain, .option = concentrations, .unit = "M * L^-3",
            .init = commonNodeConcInit, .read = commonNodeRead, .write = commonNodeWrite},
        rowOf("aperture"),
    };
    return table;
}
// clang-format on

} // namespace variables
