#include "tests/data_set.hpp"
#include "tests/runs.hpp"

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

// What files give beyond the columns of the mesh: their names, and in the zone of the second time
// the numbers of cell-centred and of shared ones, and the comments of those written.
struct Case {
    std::string what, domain;
    Problem files; // names without "to."; an empty one is taken away
    Texts off;     // options
    std::string variables, centred, shared, written;
};

const std::string pmHeads = ",Head,Pressure Head,Depth2GWT,Depth2GWT2D";
const std::string pmWritten = "head,pressure head,depth to groundwater 3d,depth to groundwater 2d";
const std::string sheetHead = ",Head,Depth,LogDepth";
const Bytes gone;

// clang-format off
const std::vector<Case> cases = {
    {"some heads", "pm", {}, {"pressure heads", "depth to water table"}, ",Head,Depth2GWT2D", "",
     "", "head,depth to groundwater 2d"},
    {"heads vanish", "pm", {{"head_pm.0002", gone}}, {}, pmHeads, "", ",8,9,10,11", ""},
    {"heads too late", "pm", {{"head_pm.0001", gone}}, {}, "", "", "", ""},
    {"walls", "pm", {{"wall_node_pm.0001", integers}, {"wall_elem_pm.0001", integers},
     {"wall_elem_pm.0002", integers}}, {"heads"}, ",Wall Node Number,Wall Element Label", ",9",
     ",8,9", ""},
    {"full tensor", "pm", {{"ElemK_pm.0001", tensor}, {"ElemK_pm.0002", tensor}}, {"heads"},
     ",Kxx,Kyy,Kzz,Kxy,Kyz,Kzx", ",8,9,10,11,12,13", ",8,9,10,11,12,13", ""},
    {"diagonal of it", "pm", {{"ElemK_pm.0001", diagonal}}, {"heads"}, ",Kxx,Kyy,Kzz", ",8,9,10",
     ",8,9,10", ""},
    {"late property", "pm", {{"ElemPor_pm.0002", elementSingle}}, {"heads"}, "", "", "", ""},
    {"constant although files come", "pm", {{"Peclet_pm.0001", vector}, {"Peclet_pm.0002", vector},
     {"v_pm.0001", vector}, {"v_pm.0002", vector}}, {"heads"},
     ",Vx,Vy,Vz,Peclet x,Peclet y,Peclet z", ",8,9,10,11,12,13", ",11,12,13",
     "x linear velocity (cell centred),y linear velocity (cell centred),"
     "z linear velocity (cell centred)"},
    {"both spellings", "pm", {{"ETPMEvap3D_pm.0001", node8}, {"ETPmEvap3D_pm.0002", node8}},
     {"heads"}, ",3D Subsurface evaporation", "", "", "3D subsurface evaporation"},
    {"flag of another", "pm", {{"tv_por_pm.0001", elementSingle}, {"tv_stor_pm.0001", element}},
     {"heads", "time varying specific storage"}, ",Time Varying SpStor", ",8", ",8", ""},
    {"surface", "olf", {}, {}, sheetHead, "", "", "head,Depth,log10(Depth)"},
    {"surface heads vanish", "olf", {{"head_olf.0002", gone}}, {}, sheetHead, "", ",6,7,8", ""},
    {"each by its file", "olf", {{"ETEvap_olf.0001", node4}, {"ETActual_olf.0001", node4},
     {"ETActual_olf.0002", node4}, {"ETPmEvap_olf.0002", node4}, {"ExchFlux_olf.0001", node4Single},
     {"ExchFlux_pm2_olf.0001", node4Single}, {"ExchFlux_pm2_olf.0002", node4Single}}, {"heads"},
     ",Surface water evaporation,Actual ET,Exchange flux,Exchange flux Pm", "", ",6,8",
     "Actual ET,exchange flux pm"},
    {"snow", "olf", {{"snowdepth.0001", element}, {"snowmelt.0001", element},
     {"snowcover.0001", node4}, {"snowdepth.0002", element}, {"snowmelt.0002", element},
     {"snowcover.0002", node4}}, {"heads"},
     ",Snowdepth,Snowmelt,Snow cover Elevation", ",6,7", "",
     "snow depth (cell centred),snowmelt (cell centred),snow cover"},
    {"snow without its first file", "olf", {{"snowdepth.0001", element}, {"snowcover.0001", node4},
     {"snowcover.0002", node4}}, {"heads"}, ",Snowdepth,Snow cover Elevation", ",6", ",6,7", ""},
    {"channel", "chan", {{"head_chan.0001", node4}, {"incised_head_chan.0001", node4},
     {"incised_head_chan.0002", node4}, {"max_depth_chan.0001", node4}}, {"incised heads"},
     ",Incised Head" + sheetHead + ",MaxDepth", "", ",7,8,9,10", "incised head"},
    {"aperture", "frac", {{"water_age_frac.0001", node4}, {"lp_frac.0001", element}}, {},
     ",Water Age,Aperture", ",7", ",6,7", ""},
};
// clang-format on

TEST(Columns, FollowTheFilesAndTheOptions) {
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const Folder folder;
        Problem problem = baseProblem();
        for (const auto& [name, contents] : c.files) {
            problem["to." + name] = contents;
            if (contents.empty()) problem.erase("to." + name);
        }
        std::string& control = problem["t.plot.control"];
        control = "end\nwrite " + c.domain + " domain file\n";
        for (const std::string& option : c.off) control += "no " + c.domain + " " + option + "\n";
        write(problem);
        const runs::Ran ran = runHere();
        ASSERT_EQ(ran.status, 0) << ran.errors;
        const data_set::DataSet set = data_set::parse(get("to." + c.domain + ".dat"));
        ASSERT_EQ(set.fault, "");
        ASSERT_EQ(set.zones.size(), 2U);
        const bool pm = c.domain == "pm";
        const std::string mesh = pm ? "Layer Number,Column Number,Thickness" : "3DNode#";
        EXPECT_EQ(set.variables, "X,Y,Z,Zone," + mesh + c.variables);
        EXPECT_EQ(set.zones[1].centred, (pm ? "4,5,6,7" : "4") + c.centred);
        EXPECT_EQ(set.zones[0].centred, set.zones[1].centred);
        EXPECT_EQ(set.zones[1].shared, (pm ? "1,2,3,4,5,6,7" : "1,2,3,4,5") + c.shared);
        EXPECT_EQ(set.zones[1].written, c.written);
    }
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
    problem["to.elements_pm"] = integerRecord({4}) + integerRecord({2}) +
                                integerRecord({1, 2, 3, 5, 2, 3, 4, 6}) + integerRecord({1, 1});
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

} // namespace
