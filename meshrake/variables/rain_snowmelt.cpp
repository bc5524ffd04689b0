#include "meshrake/variables/rain_snowmelt.hpp"

#include "tvncommon/io/file_units.hpp"
#include "tvncommon/io/io_layer.hpp"

#include <array>

namespace variables {

using model::Domain;
using model::OutputVar;
using plot_data::Location;
using plot_data::VariableRow;

namespace {

struct SnowFile {
    std::string_view stem;
    std::string_view unit;
    Location location;
};

// In the order of the columns of the row, which has one location and one unit for all of them.
constexpr std::array<SnowFile, 5> snowFiles{{
    {"snowdepth.", "L", Location::element},
    {"snowmelt.", "L * T^-1", Location::element},
    {"liquid_p.", "L * T^-1", Location::element},
    {"solid_p.", "L * T^-1", Location::element},
    {"snowcover.", "L", Location::node},
}};

} // namespace

void rainSnowmeltInit(Domain& domain, const VariableRow& row, OutputVar& var) {
    var.columns = plot_data::columnsOf(row);
    for (std::size_t file = 0; file < snowFiles.size(); ++file) {
        std::string name = plot_data::variableFile(domain, snowFiles[file].stem);
        // The five files have one variable and one pair of flags, so the last file decides.
        var.firstExists = var.exists = plot_data::checkFileInit(name);
        if (!var.exists) continue;
        model::Column& column = var.columns[file];
        column.location = snowFiles[file].location;
        plot_data::allocateColumn(domain, column, row.arrayText);
        plot_data::declareColumn(domain, column, row.columns[file].name, snowFiles[file].unit);
        plot_data::readColumns(domain, {&column, 1}, name);
    }
}

void rainSnowmeltRead(Domain& domain, const VariableRow&, OutputVar& var) {
    for (std::size_t file = 0; file < snowFiles.size(); ++file) {
        const std::span<model::Column> column{&var.columns[file], 1};
        const bool declared = column[0].varNumber > 0; // in the first pass
        const std::string name = plot_data::variableFile(domain, snowFiles[file].stem);
        // The first file decides for all of them.
        if (file == 0)
            var.exists = declared ? plot_data::readColumnsIfExist(domain, column, name)
                                  : file_units::exists(name);
        else if (declared && var.exists)
            plot_data::readColumns(domain, column, name);
        if (!declared) continue;
        if (!var.exists) plot_data::shareColumns(domain, column);
        plot_data::markColumns(domain, column);
    }
}

void rainSnowmeltWrite(Domain& domain, const VariableRow&, OutputVar& var) {
    for (const model::Column& column : var.columns)
        if (column.varNumber > 0) plot_data::writeColumn(domain, column);
}

} // namespace variables
