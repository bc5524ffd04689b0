#include "meshrake/paraview/bc_locations.hpp"
#include "tests/support/runs.hpp"
#include "tvncommon/io/file_units.hpp"

namespace {

using namespace sample_files;
using testing::ElementsAre;

class BcLocations : public runs::PartOfRun {
protected:
    static std::string converted(const std::string& contents) {
        put("to.boundary_conditions", "wells\nrim ! names\ngone ! name\n");
        put("to.Bc.rim.dat", contents);
        paraview::addition_paraview_bclocationout();
        return get("to.Bc.rim.vtk");
    }
};

TEST_F(BcLocations, ValidAndDamagedFiles) {
    const std::string valid[] = {"any\nVARIABLES = \"X\", \"Y\", \"Z\"\nZONE I=2, F=BLOCK\n# "
                                 "x\n1\n0\n# y\n 0 m\n1d0\n#\n1,9\n"
                                 "0.01",
                                 "\n\"X\" \"Z\" \"X\"\nI= \t 1\n#\n1\n#\n1\n",
                                 "\n\"x\" Y \"Y \"\nI=7\n",
                                 "\n\"Z\"\nI=2 of them\nnone\n\n",
                                 "\n\"X\"\"Y\"\nI=1,5\nno numbers\n#\n\n\n1\n",
                                 "\n\"X\"\nI=0\n#\n",
                                 "\n\"X\"\nI=4\n-"};
    std::string report;
    for (const std::string& contents : valid)
        report += "---- " + contents + "\n---- " + converted(contents);
    EXPECT_EQ(takeScreen(), "");
    EXPECT_FALSE(std::filesystem::exists("to.Bc.gone.vtk"));
    // clang-format off
    const std::string damaged[] = {
        "", "\n\"X\"\n", "\n\"X\"\nJ=3\n", "\n\"X\"\nI=3\n#\n1\n2\n",
        "\n\"X\"\nI=2\n#\n1.5 1.5\n", "\n\"X\"\nI=1\n# x\ndepth\n",
        "\n\"X\"\nI=1\n# x\n/\n", "\n\"X\"\nI=1\n# x\n,\n", "\n\"X\" \"Y\"\nI=1\n# x\n1\n",
        "\n\"X\"\nI=1\n#\n" + std::string(1000, ' ') + "1\n", // cut
        "\n\nI=\n", "\n\nI=many\n", "\n\nI=,5\n", "\n\nI=2.5\n", "\n\nI=99999999999\n",
        "\n\nI=-1\n", "\n\"X\"\nI=2147483647\n#\n1\n"};
    // clang-format on
    for (const std::string& contents : damaged)
        report +=
            "---- " + contents + "\n---- " + runs::endingOf([&] { converted(contents); }) + "\n";
    expectFile("bc_locations.txt", report);
}

TEST_F(BcLocations, NamesOfTheList) {
    put("list", "first line\n\t \t wells\t! name of wells\n  ! name\nrim here ! name\n" +
                    std::string(400, 'x') + " ! name\n" + std::string(992, ' ') + "a ! name\n" +
                    std::string(993, ' ') + "b ! name\n"); // cut before its end
    std::vector<std::string> names{"before"};
    paraview::get_bc_names_from_bc_file(file_units::openTextRead("list"), names, 300);
    EXPECT_THAT(names, ElementsAre("before", "wells\t!", "!", "rim", std::string(300, 'x'), "a"));
    std::string blank = " \t ";
    paraview::remove_front_space_tab(blank);
    EXPECT_EQ(blank, "");
}

TEST_F(BcLocations, ListsThatAreMissingOrTooLong) {
    paraview::addition_paraview_bclocationout();
    EXPECT_EQ(takeScreen(), " *o.boundary_conditions FILE DOES NOT EXISTS\n");
    std::string list;
    for (int i = 0; i < 1000; ++i) list += "n ! name\n";
    put("to.boundary_conditions", list);
    paraview::addition_paraview_bclocationout();
    put("to.boundary_conditions", list + "n ! name\n");
    runs::expectEnd("INPUT", "Error reading file: to.boundary_conditions\n",
                    [] { paraview::addition_paraview_bclocationout(); });
}

} // namespace
