#include "meshrake/variables/own_ways.hpp"

#include "tvncommon/io_layer.hpp"

#include <array>

namespace variables {

using plot_data::Location;

namespace {

struct SnowFile {
    std::string_view stem;
    std::string_view unit;
    Location location;
};

// In the order of the columns of the row.
constexpr std::array<SnowFile, 5> snowFiles{{
    {"snowdepth.", "L", Location::element},
    {"snowmelt.", "L * T^-1", Location::element},
    {"liquid_p.", "L * T^-1", Location::element},
    {"solid_p.", "L * T^-1", Location::element},
    {"snowcover.", "L", Location::node},
}};

// Row of one file alone.
VariableRow rowOf(const VariableRow& row, std::size_t file) {
    VariableRow one = row;
    one.stem = snowFiles[file].stem;
    one.unit = snowFiles[file].unit;
    one.location = snowFiles[file].location;
    one.columns = {row.columns[file]};
    return one;
}

} // namespace

// Each file decides for its own column, and the last one's presence for the writing of them all.
void rainSnowmeltInit(Domain& domain, const VariableRow& row, OutputVar& var) {
    var.columns.resize(snowFiles.size());
    for (std::size_t file = 0; file < snowFiles.size(); ++file) {
        const VariableRow one = rowOf(row, file);
        const std::string name = plot_data::firstFile(domain, one);
        var.firstExists = var.exists = !name.empty();
        if (name.empty()) continue;
        model::Column& column = var.columns[file];
        plot_data::allocateColumn(domain, one, column);
        plot_data::declareColumn(domain, one, column, one.columns[0].name, one.unit);
        plot_data::readColumns(domain, one, {&column, 1}, name);
    }
}

// The first file decides for all five; when it is there, the others must be too.
void rainSnowmeltRead(Domain& domain, const VariableRow& row, OutputVar& var) {
    var.exists = io_layer::exists(plot_data::variableFile(domain, snowFiles[0].stem));
    for (std::size_t file = 0; file < snowFiles.size(); ++file) {
        const std::span<model::Column> column{&var.columns[file], 1};
        if (column[0].varNumber == 0) continue;
        const VariableRow one = rowOf(row, file);
        if (var.exists)
            plot_data::readColumns(domain, one, column, plot_data::variableFile(domain, one.stem));
        else
            plot_data::shareColumns(column);
        plot_data::markColumns(one, column);
    }
}

void rainSnowmeltWrite(Domain& domain, const VariableRow& row, OutputVar& var) {
    for (std::size_t file = 0; file < snowFiles.size(); ++file) {
        if (var.columns[file].varNumber == 0) continue;
        plot_data::writeColumn(domain, rowOf(row, file), var.columns[file],
                               row.columns[file].label);
    }
}

} // namespace variables
