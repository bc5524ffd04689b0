#include "meshrake/variables/special_variables.hpp"

#include "tvncommon/io/file_units.hpp"
#include "tvncommon/io/io_layer.hpp"

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

} // namespace

// Each file decides for its own column, and the last one's presence for the writing of them all.
void rainSnowmeltInit(Domain& domain, const VariableRow& row, OutputVar& var) {
    var.columns = plot_data::columnsOf(row);
    for (std::size_t file = 0; file < snowFiles.size(); ++file) {
        std::string name = plot_data::variableFile(domain, snowFiles[file].stem);
        var.firstExists = var.exists = plot_data::checkFileInit(name);
        if (!var.exists) continue;
        model::Column& column = var.columns[file];
        column.location = snowFiles[file].location;
        plot_data::allocateColumn(domain, column, row.arrayText);
        plot_data::declareColumn(domain, column, row.columns[file].name, snowFiles[file].unit);
        plot_data::readColumns(domain, {&column, 1}, name);
    }
}

// The first file decides for all five; when it is there, the others must be too.
void rainSnowmeltRead(Domain& domain, const VariableRow&, OutputVar& var) {
    var.exists = file_units::exists(plot_data::variableFile(domain, snowFiles[0].stem));
    for (std::size_t file = 0; file < snowFiles.size(); ++file) {
        const std::span<model::Column> column{&var.columns[file], 1};
        if (column[0].varNumber == 0) continue;
        if (var.exists)
            plot_data::readColumns(domain, column,
                                   plot_data::variableFile(domain, snowFiles[file].stem));
        else
            plot_data::shareColumns(column);
        plot_data::markColumns(column);
    }
}

void rainSnowmeltWrite(Domain& domain, const VariableRow&, OutputVar& var) {
    for (const model::Column& column : var.columns)
        if (column.varNumber > 0) plot_data::writeColumn(domain, column);
}

} // namespace variables
