#include "meshrake/model/run_state.hpp"
#include "meshrake/truncation/common_truncation.hpp"
#include "tests/support/data_set.hpp"
#include "tests/support/runs.hpp"

// A surface that shares the nodes of pm: what it takes from pm and what is its own.
namespace {

using namespace sample_files;
using testing::ElementsAre;
using testing::HasSubstr;
using Texts = std::vector<std::string>;

const std::string pmBlock = "write pm domain file\nend\n", olfBlock = "write olf domain file\n";

class CommonNode : public testing::Test {
protected:
    CommonNode() { make(); }

    // Every file is there at three times.
    static void make() {
        makeProblem("--nx 3 --ny 2 --layers 2 --times 3 --coupling common "
                    "--species Heat:heat,Virus:particles --variables head,max_depth,sat,ice_sat,"
                    "freeze_thaw_temp,newton_residual,flow_rate,v,friction,permafrost,conc");
    }

    static data_set::Text runOver(const std::string& control = pmBlock + olfBlock) {
        put("t.plot.control", "end\n" + control);
        const runs::Ran ran = runs::runHere();
        EXPECT_EQ(ran.status, 0) << ran.errors;
        return data_set::parse(get("to.olf.dat"));
    }

    const Folder folder;
};

// Everything that pm lends is what pm shows at the node of that number, in a part of the mesh too.
TEST_F(CommonNode, TakesItsColumnsFromPmAndFromItsOwnFiles) {
    const data_set::Text whole = runOver(), pm = data_set::parse(get("to.pm.dat"));
    const std::string summary = data_set::summaryOf(data_set::parse(get("to.olf.dat")));
    // Heat has come before, in pm, so all temperatures are in degrees. Particles are not counted.
    for (const std::string unit : {"Freezing-thawing temperature units: (deg C)",
                                   "Newton residual units: (m^3 s^-1)", "Virus units: (kg m^-3)"})
        EXPECT_THAT(get("to.olf.dat"), HasSubstr("\n# " + unit + "\n"));
    for (const std::string part : {"0 1d9\n", "700 1d9\n"}) {
        const data_set::Text olf =
            runOver(pmBlock + olfBlock + "truncate olf domain\n" + part + "0 1d9\n0 1d9\n");
        EXPECT_EQ(data_set::summaryOf(data_set::parse(get("to.olf.dat"))), summary);
        const Reals numbers = data_set::valuesOf(olf, 0, "3D node #");
        EXPECT_THAT(numbers, testing::SizeIs(part[0] == '0' ? 12 : 9));
        for (std::size_t z = 0; z < 3; ++z)
            for (std::size_t i = 0; i < numbers.size(); ++i) {
                const auto expectSame = [&](const std::string& label, const data_set::Text& other,
                                            std::size_t node) {
                    EXPECT_EQ(data_set::valuesOf(olf, z, label).at(i),
                              data_set::valuesOf(other, z, label).at(node));
                };
                const auto node = static_cast<std::size_t>(numbers[i]) - 1; // 24 of them are below
                for (const std::string label :
                     {"head", "pressure head", "saturation", "Virus", "ice saturation"})
                    expectSame(label, pm, node);
                for (const std::string label : {"max water depth", "flow rate"})
                    expectSame(label, whole, node - 24);
            }
    }
    std::filesystem::remove("to.species");
    runOver();
    EXPECT_THAT(get("to.olf.dat"), HasSubstr("\n# Freezing-thawing temperature units: (K)\n"));
}

TEST_F(CommonNode, ColumnsComeAndGo) {
    const Texts cases[] = {// files that are missing
                           {},
                           {"head_pm.0001"},
                           {"conc_pm.Heat.0001"},
                           {"head_pm.0002"},
                           {"sat_pm.0002", "newton_residual_pm.0002"},
                           {"max_depth_olf.0002", "permafrost_olf.0002"},
                           {"v_olf.0002", "friction_olf.0002"},
                           {"conc_pm.Virus.0002"},
                           {"conc_pm.Heat.0002"}};
    std::string summaries;
    const auto add = [&](const std::string& what, const std::string& control) {
        runOver(pmBlock + olfBlock + control);
        summaries += what + "\n" + data_set::summaryOf(data_set::parse(get("to.olf.dat")));
    };
    for (const Texts& gone : cases) {
        make();
        std::string what = "without";
        for (const std::string& file : gone) {
            ASSERT_TRUE(std::filesystem::remove("to." + file));
            what += " " + file;
        }
        add(what, "");
    }
    make();
    add("no concentrations", "no olf concentrations\n");
    expectFile("common_columns.txt", summaries);
}

// Neither a truncated pm nor one that is not written changes what the surface shows.
TEST_F(CommonNode, DoesNotDependOnWhatPmShows) {
    runOver();
    const Bytes whole = getDated("to.olf.dat");
    runOver(olfBlock);
    EXPECT_EQ(getDated("to.olf.dat"), whole);
    EXPECT_THAT(get("to.meshrake.eco"),
                HasSubstr("-\npm data read for common node output\n   1     X\n"));
    runOver("write pm domain file\ntruncate pm domain\n0 700\n0 1d9\n0 1d9\nend\n" + olfBlock);
    EXPECT_EQ(getDated("to.olf.dat"), whole);
    // A pressure head that pm does not make is declared and has no values.
    runOver("write pm domain file\nno pm pressure heads\nend\n" + olfBlock);
    EXPECT_THAT(get("to.olf.dat"), HasSubstr("\n# pressure head\n# max water depth\n"));
}

class CommonTruncation : public runs::PartOfRun {
protected:
    CommonTruncation() {
        Problem problem = brickProblem({2, 1, 2});
        patch(problem["to.coordinates_olf"], 1, 0, 0);
        write(problem);
        create(pm, "pm", pm);
        create(olf, "olf", pm);
        takeScreen();
    }

    // Numbers of the kept nodes of pm, of the domain's own and of its elements.
    std::vector<Integers> kept() const {
        return {runs::numbersOf(olf.nodeIncluded), runs::numbersOf(olf.domainNodeIncluded),
                runs::numbersOf(olf.elementIncluded)};
    }

    model::Domain pm, olf;
};

// The nodes are numbered as the domain has them, one that no element touches too.
TEST_F(CommonTruncation, WholeMesh) {
    std::swap(olf.linkToPm[0], olf.linkToPm[5]);
    olf.elementNodes = {13, 14, 17, 16, 14, 17, 16, -3};
    truncation::commonTruncate(olf, pm);
    EXPECT_THAT(kept(),
                ElementsAre(Integers{13, 14, 16, 17}, Integers{1, 2, 3, 4, 5, 6}, Integers{1, 2}));
    EXPECT_EQ(olf.nodeRenumber, (Integers{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 6, 2, 3, 4, 5, 1}));
    EXPECT_TRUE(olf.outputIsPacked);
    EXPECT_EQ(model::run.meshNodesPerElement, 3);
    EXPECT_EQ(takeScreen(), "\nMedium: olf\nFull mesh (no truncation)\nNodes:    6\nElements: 2\n");
}

// A part of it is numbered as pm has the nodes, and layers are as large as pm's.
TEST_F(CommonTruncation, PartOfIt) {
    olf.linkFromPm[13] = 0; // a node without a link: kept, but none of the domain's own
    olf.truncateByLayerEnabled = true;
    olf.truncateLayers = {1, 1};
    olf.truncateBounds = {0, 0.5, -1e20, 1e20, 100, 100};
    truncation::commonTruncate(olf, pm);
    EXPECT_THAT(kept(), ElementsAre(Integers{13, 14, 16, 17}, Integers{1, 4, 5}, Integers{1}));
    EXPECT_EQ(olf.nodeRenumber, (Integers{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 2, 0, 3, 4, 0}));
    EXPECT_EQ(takeScreen(), "\nMedium: olf\nTruncated mesh\nNodes:    4/6\nElements: 1/2\n");

    olf.truncateEnabled = true; // the ranges come before the layers
    olf.truncateBounds = {0, 2, 0, 1, 3, 3};
    olf.linkFromPm[17] = 99;
    runs::expectEnd("INPUT",
                    "Error reading file: to.coordinates_olf\nA pm node is linked to node 99",
                    [&] { truncation::commonTruncate(olf, pm); });
}

} // namespace
