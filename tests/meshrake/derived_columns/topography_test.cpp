#include "meshrake/derived_columns/topography.hpp"
#include "meshrake/model/run_state.hpp"
#include "meshrake/variables/variable_table.hpp"
#include "tests/support/runs.hpp"

// A ground that moves. The table of cases of the columns has more.
namespace {

using namespace sample_files;

class ContinuedTopography : public runs::PartOfRun {};

// A continued run falls back to the first index of its window, once for the heads and once for the
// column; for the zones, to index 1. Each warning precedes the number of its column.
TEST_F(ContinuedTopography, FallsBackToTheFirstIndex) {
    Problem problem = brickProblem({1, 1, 1, 1});
    problem["to.tvtopo_pm.0001"] = resultFile("0.0", {Reals(8, 7.0)});
    problem["to.tvtopo_pm.0003"] = resultFile("0.0", {Reals(8, 0.5)});
    problem["to.tv_zone_pm.0001"] = resultFile("0.0", Integers{5});
    write(problem);
    model::Domain pm;
    create(pm, "pm", pm);
    model::run.tecplotAppend = true;
    model::run.appendFirstIndex = 3;
    model::run.timeSuffix = "0009";
    takeScreen();
    const auto table = variables::variableTable();
    for (const auto& row : table) pm.outputVars.push_back({row.key, false, false, {}});
    for (std::size_t i = 0; i < table.size(); ++i)
        if (table[i].key == "zone" || table[i].key.starts_with("tvTopo"))
            table[i].init(pm, table[i], pm.outputVars[i]);
    EXPECT_EQ(derived_columns::elevation(pm), Reals(8, 0.5));
    EXPECT_EQ(pm.elementZone, Integers{5});
    const std::string warning = "Warning: file not found -> appending at time index 000";
    EXPECT_EQ(takeScreen(), warning + "1\n   1     Zone\n" + warning + "3\n" + warning +
                                "3\n   2     tvTopoZ\n   3     tvTopoZAbsDiff\n");
}

} // namespace
