#include "tests/support/data_set.hpp"
#include "tests/support/runs.hpp"

// A surface on the common-node scheme: columns with values of pm and columns of its own files.
namespace {

using namespace sample_files;
using namespace runs;

const std::string pmBlock = "write pm domain file\nend\n", olfBlock = "write olf domain file\n";

class CommonNode : public testing::Test {
protected:
    CommonNode() { make(); }

    // Writes a problem with all files at three output times.
    static void make() {
        makeProblem("--nx 3 --ny 2 --layers 2 --times 3 --coupling common "
                    "--species Heat:heat,Virus:particles --variables head,max_depth,sat,ice_sat,"
                    "freeze_thaw_temp,newton_residual,flow_rate,v,friction,permafrost,conc");
    }

    static data_set::Text runOver(const std::string& control = pmBlock + olfBlock) {
        put("t.plot.control", "end\n" + control);
        const Ran ran = runHere();
        EXPECT_EQ(ran.status, 0) << ran.errors;
        return data_set::parse(get("to.olf.dat"));
    }

    const Folder folder;
};

// The columns with values of pm have the values of the pm node at each node, whole and truncated.
TEST_F(CommonNode, HasColumnsOfPmAndOfItsOwnFiles) {
    const data_set::Text whole = runOver(), pm = data_set::parse(get("to.pm.dat"));
    const std::string summary = data_set::summaryOf(data_set::parse(get("to.olf.dat")));
    // pm has heat and is processed before, so all temperatures are in degrees. Particles have the
    // unit of a mass.
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
                // The 24 nodes of the lower sheets come before those of the surface.
                const auto node = static_cast<std::size_t>(numbers[i]) - 1;
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

TEST_F(CommonNode, ColumnsFollowTheFilesOfPm) {
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
    for (const Texts& missing : cases) {
        make();
        std::string what = "without";
        for (const std::string& file : missing) {
            ASSERT_TRUE(std::filesystem::remove("to." + file));
            what += " " + file;
        }
        add(what, "");
    }
    make();
    add("no concentrations", "no olf concentrations\n");
    expectFile("common_columns.txt", summaries);
}

// The surface is the same if pm is truncated or not written.
TEST_F(CommonNode, DoesNotDependOnThePlotFileOfPm) {
    runOver();
    const Bytes whole = getDated("to.olf.dat");
    runOver(olfBlock);
    EXPECT_EQ(getDated("to.olf.dat"), whole);
    EXPECT_THAT(get("to.meshrake.eco"),
                HasSubstr("-\npm data read for common node output\n   1     X\n"));
    runOver("write pm domain file\ntruncate pm domain\n0 700\n0 1d9\n0 1d9\nend\n" + olfBlock);
    EXPECT_EQ(getDated("to.olf.dat"), whole);
    // Pressure heads that are disabled in pm are declared and have no values.
    runOver("write pm domain file\nno pm pressure heads\nend\n" + olfBlock);
    EXPECT_THAT(get("to.olf.dat"), HasSubstr("\n# pressure head\n# max water depth\n"));
}

} // namespace
