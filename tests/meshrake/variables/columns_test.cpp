#include "meshrake/model/run_state.hpp"
#include "meshrake/variables/special_variables.hpp"
#include "meshrake/variables/variable_table.hpp"
#include "tests/support/data_set.hpp"
#include "tests/support/runs.hpp"

#include <limits>

// Which files give which columns, at the first output time and at the second.
namespace {

using namespace sample_files;
using runs::runHere;
using Singles = std::vector<float>;
using testing::HasSubstr;
using testing::Not;
using Texts = std::vector<std::string>;

// One brick with a surface, a fracture and a channel upon it, at two output times.
Problem baseProblem() {
    const Grid grid{1, 1, 1, 2};
    Problem problem = brickProblem(grid);
    addSheetDomain(problem, grid, "frac", 12, "", integerRecord({1, 0}) + realRecord({0.25}));
    addSheetDomain(problem, grid, "chan", 16, "", "");
    return problem;
}

const Bytes node8 = resultFile("0.0", {Reals(8, 1.0)});
const Bytes node4 = resultFile("0.0", {Reals(4, 1.0)});
const Bytes node4Single = resultFile("0.0", {Singles(4, 1.0F)});
const Bytes element = resultFile("0.0", {Reals(1, 1.0)});
const Bytes elementSingle = resultFile("0.0", {Singles(1, 1.0F)});
const Bytes vector = resultFile("0.0", {Singles{1}, Singles{2}, Singles{3}});
const Bytes integers = resultFile("0.0", Integers(8, 3));
const Bytes tensor =
    resultFile("0.0 3", {Reals{1}, Reals{2}, Reals{3}, Reals{4}, Reals{5}, Reals{6}});
const Bytes diagonal = resultFile("0.0 1 rest", {Reals{1}, Reals{2}, Reals{3}});

// Files without "to.", with their times from 1: "head_pm.12" has two. An empty one is taken away.
using Files = std::map<std::string, Bytes>;

struct Case {
    std::string what, domain;
    Files files;
    Texts off; // options
};

const Bytes gone;

// clang-format off
const std::vector<Case> cases = {
    {"some heads", "pm", {}, {"pressure heads", "depth to water table"}},
    {"heads vanish", "pm", {{"head_pm.2", gone}}, {}},
    {"heads too late", "pm", {{"head_pm.1", gone}}, {}},
    {"walls", "pm", {{"wall_node_pm.1", integers}, {"wall_elem_pm.12", integers}}, {"heads"}},
    {"full tensor", "pm", {{"ElemK_pm.12", tensor}}, {"heads"}},
    {"diagonal of it", "pm", {{"ElemK_pm.1", diagonal}}, {"heads"}},
    {"late property", "pm", {{"ElemPor_pm.2", elementSingle}}, {"heads"}},
    {"constant although files come", "pm", {{"Peclet_pm.12", vector}, {"v_pm.12", vector}},
     {"heads"}},
    {"both spellings", "pm", {{"ETPMEvap3D_pm.1", node8}, {"ETPmEvap3D_pm.2", node8}}, {"heads"}},
    {"flag of another", "pm", {{"tv_por_pm.1", elementSingle}, {"tv_stor_pm.1", element}},
     {"heads", "time varying specific storage"}},
    {"surface", "olf", {}, {}},
    {"surface heads vanish", "olf", {{"head_olf.2", gone}}, {}},
    {"each by its file", "olf", {{"ETEvap_olf.1", node4}, {"ETActual_olf.12", node4},
     {"ETPmEvap_olf.2", node4}, {"ExchFlux_olf.1", node4Single},
     {"ExchFlux_pm2_olf.12", node4Single}}, {"heads"}},
    {"snow", "olf", {{"snowdepth.12", element}, {"snowmelt.12", element}, {"snowcover.12", node4}},
     {"heads"}},
    {"snow without its first file", "olf", {{"snowdepth.1", element}, {"snowcover.12", node4}},
     {"heads"}},
    {"channel", "chan", {{"head_chan.1", node4}, {"incised_head_chan.12", node4},
     {"max_depth_chan.1", node4}}, {"incised heads"}},
    {"aperture", "frac", {{"water_age_frac.1", node4}, {"lp_frac.1", element},
     {"tvtopo_frac.1", node4}}, {}},
};
// clang-format on

TEST(Columns, FollowTheFilesAndTheOptions) {
    std::string summaries;
    for (const Case& c : cases) {
        const Folder folder;
        Problem problem = baseProblem();
        for (const auto& [name, contents] : c.files) {
            const std::size_t times = name.find('.') + 1;
            for (const char time : name.substr(times)) {
                const std::string file = "to." + name.substr(0, times) + "000" + time;
                problem[file] = contents;
                if (contents.empty()) problem.erase(file);
            }
        }
        std::string& control = problem["t.plot.control"];
        control = "end\nwrite " + c.domain + " domain file\n";
        for (const std::string& option : c.off) control += "no " + c.domain + " " + option + "\n";
        write(problem);
        EXPECT_EQ(runHere().status, 0) << c.what;
        summaries += c.what + "\n" + data_set::summaryOf(get("to." + c.domain + ".dat"));
    }
    expectFile("columns.txt", summaries);
}

class ColumnValues : public runs::ProblemRun {
protected:
    ColumnValues() { problem = baseProblem(); }

    // Values of one column of a zone, from 0.
    static std::string valuesOf(const std::string& tag, std::size_t zone,
                                const std::string& label) {
        std::string row;
        const data_set::DataSet set = data_set::parse(get("to." + tag + ".dat"));
        for (const std::string& value : set.zones.at(zone).values.at(label)) row += value + " ";
        return row;
    }
};

TEST_F(ColumnValues, WaterDepths) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    problem["to.head_olf.0001"] = resultFile("0.0", {Reals{1.5, 1.0, 0.5, nan}});
    problem["to.head_olf.0002"] =
        resultFile("0.0", {Reals{1.0 + 0x1p-30, 101.0, 1.0 + 1e-4, -1e300}});
    ASSERT_EQ(run().status, 0);
    const std::string zero = "0.0000000000000000 ", least = "-8.0000000000000000 ";
    EXPECT_EQ(valuesOf("olf", 0, "Depth"), "0.50000000000000000 " + zero + zero + zero);
    EXPECT_EQ(valuesOf("olf", 0, "log10(Depth)"), "-0.30103000998497009 " + least + least + "NaN ");
    EXPECT_EQ(valuesOf("olf", 1, "Depth"),
              "0.93132257461547852E-009 100.00000000000000 0.99999997473787516E-004 " + zero);
    EXPECT_EQ(valuesOf("olf", 1, "log10(Depth)"),
              least + "2.0000000000000000 -4.0000000000000000 " + least);
}

// Columns, layers and heights of 2 by 1 by 2 bricks, whole and cut.
TEST_F(ColumnValues, MeshColumns) {
    problem = brickProblem({2, 1, 2, 2});
    ASSERT_EQ(run().status, 0);
    EXPECT_EQ(valuesOf("pm", 0, "Layer #"), "1 1 2 2 ");
    EXPECT_EQ(valuesOf("pm", 0, "Column #"), "1 2 1 2 ");
    run("end\nwrite pm domain file\ntruncate pm domain by layer\n1 2\n0 1\n2 2\nend\n"
        "write olf domain file\ntruncate olf domain\n1 2\n0 1\n0 9\nend\n");
    EXPECT_EQ(valuesOf("pm", 0, "Layer #"), "2 ");
    EXPECT_EQ(valuesOf("pm", 0, "Column #"), "2 ");
    EXPECT_EQ(valuesOf("pm", 0, "Thickness"), "2.0000000000000000 ");
    EXPECT_EQ(valuesOf("olf", 0, "3D node #"), "14 15 17 18 ");
    // A zone with a file for each time is not shared.
    problem["to.tv_zone_pm.0002"] = resultFile("0.0", Integers{9, 8, 7, 6});
    run("end\nwrite pm domain file\nno pm layer numbers\nno pm column numbers\n"
        "no pm element thickness\nno pm heads\n");
    EXPECT_THAT(get("to.pm.dat"),
                HasSubstr("VARLOCATION=([4]=CELLCENTERED), VARSHARELIST=([1,2,3])"));
    EXPECT_EQ(valuesOf("pm", 1, "zone (cell centred)"), "9 8 7 6 ");
}

// The one layer of tetrahedra has no depth columns at first and gets their values later.
TEST_F(ColumnValues, TetrahedraAndTheirDepths) {
    problem["to.elements_pm"] =
        integerRecords({4, 2}) + integerRecord({1, 2, 3, 5, 2, 3, 4, 6}) + integerRecord({1, 1});
    run();
    EXPECT_THAT(get("to.pm.dat"), testing::AllOf(Not(HasSubstr("Depth2GWT")),
                                                 HasSubstr("\n# depth to groundwater 3d\n"),
                                                 HasSubstr("ZONETYPE=FETETRAHEDRON")));
    std::filesystem::remove("to.head_pm.0002");
    problem.erase("to.head_pm.0002");
    run();
    EXPECT_THAT(get("to.pm.dat"), HasSubstr("VARSHARELIST=([1,2,3,4,5,6,7,8,9,0,0])"));
}

TEST_F(ColumnValues, FilesThatEndTheRun) {
    problem["to.snowdepth.0001"] = problem["to.snowdepth.0002"] = element;
    problem["to.snowcover.0001"] = problem["to.snowcover.0002"] = node4;
    const Problem good = problem;
    const std::array<std::string, 3> endings[] = {
        // file, contents, message
        {"to.ElemK_pm.0001", resultFile("0.0 full", {Reals{1}, Reals{2}, Reals{3}}),
         "Error reading file: to.ElemK_pm.0001\n"},
        {"to.snowmelt.0001", element, "Failed to open file: to.snowmelt.0002\n"},
        {"to.head_chan.0001", header("", "R08", 1, 4) + realRecord(Reals(4)),
         "Invalid binary file header format. Timestamp missing or malformed.\nFile: "
         "to.head_chan.0001\n"},
    };
    for (const auto& [file, contents, message] : endings) {
        problem = good;
        problem[file] = contents;
        runs::expectFailure(run(), {"**\n\n" + message});
        std::filesystem::remove(file);
    }
}

class Steps : public runs::PartOfRun {};

// No pass calls pecletRead: all zones share the numbers of the first.
TEST_F(Steps, PecletNumbersCanBeReadAtLaterTimes) {
    Problem problem = brickProblem({1, 1, 1, 1});
    const std::vector<Singles> components{{1}, {2}, {3}};
    problem["to.Peclet_pm.0002"] = resultFile("2.0", components);
    write(problem);
    model::Domain pm;
    create(pm, "pm", pm);
    for (const plot_data::VariableRow& row : variables::variableTable()) {
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
