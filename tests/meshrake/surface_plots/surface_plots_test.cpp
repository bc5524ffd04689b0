#include "meshrake/surface_plots/isopach_plot.hpp"
#include "tests/support/data_set.hpp"
#include "tests/support/runs.hpp"

namespace {

using namespace sample_files;
using namespace runs;
using data_set::Text;
using data_set::valuesOf;
using model::Domain;

const std::string isopachs = "plot pm zone isopach structure\n";
const std::string depths = "plot pm depth below ground surface\n";
const std::string writePm = "write pm domain file\nend\n";
const std::string writeOlf = "write olf domain file\nend\n";
const std::string rule(48, '-');

// Two columns of bricks in three layers with heights 1, 2 and 3. Each layer is an element zone.
class SurfacePlots : public ProblemRun {
protected:
    SurfacePlots() { problem = brickProblem({2, 1, 3, 1}); }

    Text plot(const std::string& control, const std::string& file) {
        EXPECT_THAT(run("end\n" + control).screen, HasSubstr("---- Normal exit ----"));
        Text set = data_set::parse(get(file));
        EXPECT_EQ(set.fault, "");
        return set;
    }
    Text isopachPlot(const std::string& control = writePm + writeOlf) {
        return plot(control + isopachs, "to.pm_Isopach.dat");
    }
    void setZones(const Integers& zones) {
        for (std::size_t e = 0; e < zones.size(); ++e)
            patch(problem["to.elements_pm"], 3, int(e), zones[e]);
    }
};

TEST_F(SurfacePlots, IsopachsHaveThicknessAndTopOfEachZone) {
    const std::pair<const char*, Integers> cases[] = {
        {"a gap between two layers", {1, 1, 2, 2, 1, 1}},
        {"missing in one column", {1, 2, 1, 2, 1, 2}},
        {"the last element decides", {1, 1, 1, 2, 2, 2}},
        {"no such zone", {3, 3, 3, 3, 3, 3}},
        {"no zone above 0", {0, 0, -1, -5, 0, 0}},
        {"zones without elements", {1, 1, 2, 2, 12, 12}}};
    std::string report;
    for (const auto& [what, zones] : cases) {
        setZones(zones);
        const Text plot = isopachPlot();
        EXPECT_EQ(plot.labels.at(0),
                  (Texts{"x", "y", "z (isopach top)", "isopach thickness (cell centred)"}));
        report += std::string(what) + "\n" + getDated("to.pm_Isopach.dat");
    }
    expectFile("isopachs.txt", report);
}

TEST_F(SurfacePlots, UseTheTruncationOfTheRun) {
    const Text plot =
        isopachPlot(writePm + "write olf domain file\ntruncate olf domain\n1 2\n0 1\n0 9\nend\n");
    EXPECT_EQ(valuesOf(plot, 0, "x"), (Reals{1, 2, 1, 2}));
    EXPECT_EQ(valuesOf(plot, 2, "isopach thickness"), Reals{3});
    const Bytes echo = get("to.meshrake.eco");
    EXPECT_EQ(echo.find("Medium: olf"), echo.rfind("Medium: olf"));

    // A domain that the run has not written is truncated for the plot, which is reported first.
    const Ran ran = run("end\n" + isopachs + depths);
    const std::string report = "Full mesh (no truncation)\nNodes:    6\nElements: 2\n \n" + rule +
                               "\npm isopach plot\nCreating Tecplot file to.pm_Isopach.dat\n";
    EXPECT_THAT(ran.screen, HasSubstr(report));
    EXPECT_THAT(get("to.meshrake.eco"), HasSubstr(report));
    EXPECT_THAT(ran.screen, HasSubstr("Elements: 6\n \n" + rule +
                                      "\nplot pm depth below ground surface\nCreating "));
}

TEST_F(SurfacePlots, UseTheCoordinatesOfPmIfTheSurfaceHasNoNodesOfItsOwn) {
    // The nodes of olf are in descending order.
    Integers linkFromPm(18);
    linkFromPm.insert(linkFromPm.end(), {6, 5, 4, 3, 2, 1});
    problem["to.coordinates_olf"] = integerRecords({6, 0}) +
                                    integerRecord({24, 23, 22, 21, 20, 19}) +
                                    integerRecord(linkFromPm) + integerRecord({0});
    problem.erase("to.head_olf.0001");
    const Text plot = isopachPlot();
    EXPECT_EQ(valuesOf(plot, 0, "x"), (Reals{2, 1, 0, 2, 1, 0}));
    EXPECT_EQ(valuesOf(plot, 1, "z (isopach top)"), Reals(6, 3.0));
}

TEST_F(SurfacePlots, DepthsAreBelowTheTopNodeOfTheColumn) {
    Reals expected;
    for (const double depth : {6, 5, 3, 0}) expected.insert(expected.end(), 6, depth);
    // If pm is written, it already has the depths.
    for (const std::string& control : {writePm + writeOlf, writeOlf}) {
        const Text plot = this->plot(control + depths, "to.pm_DepthToSurf.dat");
        EXPECT_EQ(data_set::join(plot.set.variables), "X,Y,Z,DepthToSurf");
        EXPECT_THAT(plot.zoneLines.at(0), HasSubstr("ZONE T=\"DepthToSurf\", DATAPACKING=BLOCK"));
        EXPECT_EQ(valuesOf(plot, 0, "DepthToSurf"), expected);
        EXPECT_EQ(data_set::join(plot.labels[0]), "x,y,z,DepthToSurf");
    }
}

TEST_F(SurfacePlots, InvalidMeshesEndTheRunBeforeAnythingIsWritten) {
    const Problem good = problem;
    const auto expectEnd = [&](const std::string& plot, const std::string& words) {
        const Ran ran = run("end\n" + writePm + writeOlf + plot);
        expectFailure(ran, {words});
        EXPECT_THAT(ran.screen, Not(HasSubstr("Creating Tecplot file")));
        problem = good;
    };
    for (const std::string& plot : {isopachs, depths}) {
        problem.erase("to.coordinates_olf");
        std::filesystem::remove("to.coordinates_olf");
        expectEnd(plot, "has 0 nodes and 0 elements.\nFile: to.coordinates_olf\n");
        patch(problem["to.elements_olf"], 1, 0, 0);
        expectEnd(plot, "has 6 nodes and 0 elements.\nFile: to.elements_olf\n");
    }
    patch(problem["to.elements_pm"], 2, 2 * 8 + 1, 0);
    expectEnd(isopachs, "element 3 of to.elements_pm has an unused node slot");
    patch(problem["to.elements_pm"], 2, 2, 9);
    expectEnd(isopachs, "element 1 of to.elements_pm has node 9, which is not one of the 6");
    // A damaged number would fill the disk with zones.
    for (const std::int32_t number : {100001, 2147483647}) {
        patch(problem["to.elements_pm"], 3, 5, number);
        expectEnd(isopachs, "zones of pm, " + std::to_string(number) + ", is in to.elements_pm");
    }
}

// Surface triangles in elements of four or three slots, above prisms.
TEST(IsopachStructure, TrianglesHaveThreeNodesInAFace) {
    Domain pm, olf;
    pm.z = {0, 0, 0, 1, 2, 3, 4, 5, 6};
    pm.nodesPerElement = 6;
    pm.elementNodes = {1, 2, 3, 4, 5, 6, 4, 5, 6, 7, 8, 9};
    pm.elementCount = 2;
    pm.elementZone = {1, 1};
    for (const std::vector<std::int32_t>& nodes : {Integers{1, 2, 3, 0}, Integers{1, 2, 3}}) {
        olf.nodesPerElement = std::int32_t(nodes.size());
        olf.elementNodes = nodes;
        olf.elementCount = 1;
        surface_plots::Isopach isopach{{7, 7, 7}, {7}};
        surface_plots::compute_isopach_structure(1, olf, pm, isopach);
        EXPECT_EQ(isopach.zoneThickness, Reals{2.0 + (5.0 - 2.0)});
        EXPECT_EQ(isopach.topElevation, (Reals{4, 5, 6}));
    }
}

} // namespace
