#include "meshrake/derived_columns/topography.hpp"
#include "meshrake/model/run_state.hpp"
#include "meshrake/variables/variable_table.hpp"
#include "tests/support/data_set.hpp"
#include "tests/support/runs.hpp"

// A ground that moves: its own columns, and the columns that go by its elevations.
namespace {

using namespace sample_files;

// A value of an array, empty where the zone has no such array.
std::string valueOf(const data_set::Zone& zone, const std::string& label, std::size_t node = 0) {
    const auto found = zone.values.find(label);
    return found == zone.values.end() ? "" : found->second.at(node);
}

// One brick whose top is at 1. At the second time the head is 0.75 in pm, and at the third node of
// the surface. The ground is at 0.125, 0.25 and 0.375 at the three times.
TEST(Topography, MovesWithItsFiles) {
    struct Case {
        std::string files;           // by time, whether they are there
        std::string variables, zone; // of pm; elevation, change and zone of its second zone
        std::string pressure, depth; // at the second time
        std::string shared;          // of the second zone
    };
    const std::string mesh = "X,Y,Z,Zone,Layer Number,Column Number,Thickness,Head,Pressure Head,"
                             "Depth2GWT,Depth2GWT2D";
    const std::string moving = mesh + ",tvTopoZ,tvTopoZAbsDiff,tvTopoZone";
    const Case cases[] = {
        {"111", moving, "0.25000000000000000 -0.25000000000000000 2", "0.50000000000000000",
         "0.50000000000000000", "1,2,3,4,5,6,7"},
        // The last elevations stay in use, but the columns are those of the first zone.
        {"101", moving, "  ", "0.62500000000000000", "0.62500000000000000",
         "1,2,3,4,5,6,7,12,13,14"},
        {"011", mesh, "  ", "0.75000000000000000", "0.0000000000000000", "1,2,3,4,5,6,7"}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.files);
        const Folder folder;
        Problem problem = brickProblem({1, 1, 1, 3});
        for (int t = 1; t <= 3; ++t) {
            if (c.files[static_cast<std::size_t>(t - 1)] == '0') continue;
            const std::string end = ".000" + std::to_string(t);
            problem["to.tvtopo_pm" + end] = resultFile("0.0", {Reals(8, 0.125 * t)});
            problem["to.tvtopo_olf" + end] = resultFile("0.0", {Reals(4, 0.125 * t)});
            problem["to.tvtopo_zone_pm" + end] = resultFile("0.0", Integers{t});
        }
        write(problem);
        ASSERT_EQ(runs::runHere().status, 0);
        const data_set::DataSet pm = data_set::parse(get("to.pm.dat"));
        const data_set::DataSet olf = data_set::parse(get("to.olf.dat"));
        EXPECT_EQ(pm.variables, c.variables);
        const data_set::Zone& later = pm.zones.at(1);
        EXPECT_EQ(valueOf(later, "tvTopoZ") + " " + valueOf(later, "tvTopoZAbsDiff") + " " +
                      valueOf(later, "tvTopoZone"),
                  c.zone);
        EXPECT_EQ(valueOf(later, "pressure head"), c.pressure);
        EXPECT_EQ(later.shared, c.shared);

        // The surface has no column of the change, and the logarithm goes by the mesh.
        EXPECT_EQ(olf.variables, std::string("X,Y,Z,Zone,3DNode#,Head,Depth,LogDepth") +
                                     (c.variables == mesh ? "" : ",tvTopoZ"));
        EXPECT_EQ(valueOf(olf.zones.at(1), "Depth", 2), c.depth);
        EXPECT_EQ(valueOf(olf.zones.at(1), "log10(Depth)", 2), "-8.0000000000000000");
    }
}

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
