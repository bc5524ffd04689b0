#include "meshrake/paraview/bc_locations.hpp"
#include "tests/support/runs.hpp"
#include "tvncommon/io/file_units.hpp"

#include <gmock/gmock.h>

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
    static std::string head(const std::string& count) {
        return "# vtk DataFile Version 2.0\nBOUNDARY NODE LOCATIONS\nASCII\n\n"
               "DATASET POLYDATA\nPOINTS " +
               count + " double\n";
    }
};

TEST_F(BcLocations, PointsByTheirCoordinates) {
    const std::string one = "   1.0000000000000000     ", zero = "   0.0000000000000000     ",
                      tiny = "  0.10000000000000000E-001";
    const std::pair<const char*, std::string> cases[] = {
        {"any\nVARIABLES = \"X\", \"Y\", \"Z\"\nZONE I=2, F=BLOCK\n# x\n1\n0\n# y\n 0 "
         "m\n1d0\n#\n1,9\n0.01",
         head("         2") + one + " " + zero + " " + one + "\n" + zero + " " + one + " " + tiny +
             "\n"},
        {"\n\"X\" \"Z\" \"X\"\nI= \t 1\n#\n1\n#\n1\n", head("         1") + one + " " + one + "\n"},
        {"\n\"x\" Y \"Y \"\nI=7\n", head("         7")},
        {"\n\"Z\"\nI=2 of them\nnone\n\n", head("         2") + zero + "\n" + zero + "\n"},
        {"\n\"X\"\"Y\"\nI=1,5\nno numbers\n#\n\n\n1\n",
         head("         1") + zero + " " + one + "\n"},
        {"\n\"X\"\nI=0\n#\n", head("         0")},
        {"\n\"X\"\nI=4\n-",
         head("         4") + zero + "\n" + zero + "\n" + zero + "\n" + zero + "\n"},
    };
    for (const auto& [contents, points] : cases) EXPECT_EQ(converted(contents), points) << contents;
    EXPECT_EQ(takeScreen(), "");
    EXPECT_FALSE(std::filesystem::exists("to.Bc.gone.vtk"));
}

TEST_F(BcLocations, DamagedFilesEndTheRun) {
    struct Case {
        std::string contents;
        const char* message = "";
        const char* kind = "INPUT";
    };
    const char* noInteger = "The number of points is no integer: I=";
    const Case cases[] = {
        {"", "", "FATAL"},
        {"\n\"X\"\n", "", "FATAL"},
        {"\n\"X\"\nI=3\n#\n1\n2\n", "", "FATAL"},
        {"\n\"X\"\nI=2\n#\n1.5 1.5\n", "", "FATAL"},
        {"\n\"X\"\nI=1\n# x\ndepth\n", "", "FATAL"},
        {"\n\"X\"\nI=1\n# x\n/\n", "", "FATAL"},
        {"\n\"X\"\nI=1\n# x\n,\n", "", "FATAL"},
        {"\n\"X\" \"Y\"\nI=1\n# x\n1\n", "", "FATAL"},
        {"\n\"X\"\nI=1\n#\n" + std::string(1000, ' ') + "1\n", "", "FATAL"}, // cut
        {"\n\"X\"\nJ=3\n", "I= is missing: J=3"},
        {"\n\nI=\n", noInteger},
        {"\n\nI=many\n", noInteger},
        {"\n\nI=,5\n", noInteger},
        {"\n\nI=2.5\n", noInteger},
        {"\n\nI=99999999999\n", noInteger},
        {"\n\nI=-1\n", "A count is negative: -1 points"},
        {"\n\"X\"\nI=2147483647\n#\n1\n", "More than the file can hold: 2147483647 points"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.contents);
        runs::expectEnd(c.kind, std::string("Error reading file: to.Bc.rim.dat\n") + c.message,
                        [&] { converted(c.contents); });
    }
}

TEST_F(BcLocations, NamesOfTheList) {
    put("list", "first line\n\t \t wells\t! name of wells\n  ! name\nrim here ! name\n" +
                    std::string(400, 'x') + " ! name\n" + std::string(992, ' ') + "a ! name\n" +
                    std::string(993, ' ') + "b ! name\n"); // cut in front of its end
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
