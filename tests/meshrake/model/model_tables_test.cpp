#include "meshrake/model/run_state.hpp"
#include "meshrake/variables/special_variables.hpp"
#include "meshrake/variables/variable_table.hpp"
#include "tests/support/runs.hpp"
#include "tvncommon/io/TVNBinaryFile.hpp"
#include "tvncommon/io/io_layer.hpp"

#include <filesystem>
#include <set>

namespace {

using model::Domain;
using plot_data::Location;
using plot_data::VariableRow;

const std::vector<std::string> tagNames = {"pm", "dual", "olf", "frac", "chan", "well", "tile"};

class VariableFiles : public runs::PartOfRun {};

// The program that writes sample problems has a table of its own: types, sizes and names of its
// files must be those that the rows look for.
TEST_F(VariableFiles, AreThoseThatTheSimulatorWrites) {
    sample_files::makeProblem("--nx 2 --ny 2 --layers 2 --times 1 --variables all --tensor "
                              "--domains pm,dual,olf,frac,chan,well,tile");
    model::run.timeSuffix = "0001";
    std::set<std::string> left;
    for (const auto& entry : std::filesystem::directory_iterator("."))
        if (entry.path().extension() == ".0001") left.insert(entry.path().filename());
    EXPECT_GT(left.size(), 100U);
    std::vector<Domain> domains(tagNames.size());
    for (std::size_t d = 0; d < domains.size(); ++d) {
        create(domains[d], tagNames[d], domains[0]);
        for (const VariableRow& row : variables::variableTable()) {
            if (!(row.domains & domains[d].tag) || row.stem.empty()) continue;
            const std::string name = plot_data::variableFile(domains[d], row.stem);
            if (!std::filesystem::exists(name)) continue;
            left.erase(name);
            const auto header = TVNBinaryFile::parseTVNBinFileHeader(
                TVNBinaryFile::readTVNBinFileHeader(name), name);
            const auto type = row.type == model::DataType::single  ? "R04"
                              : row.type == model::DataType::real8 ? "R08"
                                                                   : "I04";
            const bool nodal = row.location == Location::node;
            EXPECT_EQ(header.dataType, type) << name;
            EXPECT_EQ(header.numValues, nodal ? domains[d].nodeCount : domains[d].elementCount)
                << name;
            // The second column of the moving ground is computed.
            const std::size_t components = row.stem == "tvtopo_" ? 1 : plot_data::columnCount(row);
            EXPECT_EQ(header.numComponents, static_cast<int>(components)) << name;
        }
    }
    EXPECT_THAT(left,
                testing::ElementsAre("to.liquid_p.0001", "to.snowcover.0001", "to.snowdepth.0001",
                                     "to.snowmelt.0001", "to.solid_p.0001"));
}

// No pass calls it: the numbers of the first zone stand for all.
TEST_F(VariableFiles, PecletNumbersCanBeReadAtLaterTimes) {
    sample_files::Problem problem = sample_files::brickProblem({1, 1, 1, 1});
    const std::vector<std::vector<float>> components{{1}, {2}, {3}};
    problem["to.Peclet_pm.0002"] = sample_files::resultFile("2.0", components);
    sample_files::write(problem);
    Domain pm;
    create(pm, "pm", pm);
    for (const VariableRow& row : variables::variableTable()) {
        if (row.key != "peclet") continue;
        model::OutputVar var;
        var.columns = plot_data::columnsOf(row);
        for (model::Column& column : var.columns) plot_data::allocateColumn(pm, column, "");
        for (const auto& [suffix, exists] : {std::pair("0002", true), std::pair("0003", false)}) {
            model::run.timeSuffix = suffix;
            variables::pecletRead(pm, row, var);
            EXPECT_EQ(var.exists, exists);
            EXPECT_EQ(var.columns[2].real4, components[2]);
        }
    }
}

} // namespace
