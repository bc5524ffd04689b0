#include "meshrake/model/run_state.hpp"
#include "meshrake/paraview/bc_locations.hpp"
#include "tests/runs.hpp"
#include "tvncommon/file_units.hpp"

#include <gmock/gmock.h>

namespace {

using namespace sample_files;
using testing::ElementsAre;

class BcLocations : public runs::PartOfRun {
protected:
    static void convert(const std::string& contents) {
        put("to.boundary_conditions", "rim ! name\n");
        put("to.Bc.rim.dat", contents);
        paraview::addition_paraview_bclocationout();
    }
    static std::string converted(const std::string& contents) {
        convert(contents);
        return get("to.Bc.rim.vtk");
    }
};

std::string head(const std::string& count) {
    return "# vtk DataFile Version 2.0\nBOUNDARY NODE LOCATIONS\nASCII\n\nDATASET "
           "POLYDATA\nPOINTS " +
           count + " double\n";
}

TEST_F(BcLocations, PointsByTheirCoordinates) {
    const std::string one = "   1.0000000000000000     ", zero = "   0.0000000000000000     ",
                      tiny = "  0.10000000000000000E-001";
    struct Case {
        const char* contents;
        std::string points;
    };
    const Case cases[] = {
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
    };
    for (const Case& c : cases) EXPECT_EQ(converted(c.contents), c.points) << c.contents;
}

TEST_F(BcLocations, DamagedFilesEndTheRun) {
    const std::string file = "Error reading file: to.Bc.rim.dat";
    struct Case {
        const char* contents;
        const char* kind;
        const char* message;
    };
    const Case cases[] = {
        {"", "FATAL", ""},
        {"\n\"X\"\n", "FATAL", ""},
        {"\n\"X\"\nJ=3\n", "INPUT", "\nI= is missing: J=3"},
        {"\n\nI=\n", "INPUT", "\nThe number of points is no integer: I="},
        {"\n\nI=many\n", "INPUT", "\nThe number of points is no integer: I=many"},
        {"\n\nI=2.5\n", "INPUT", "\nThe number of points is no integer: I=2.5"},
        {"\n\nI=99999999999\n", "INPUT", "\nThe number of points is no integer"},
        {"\n\nI=-1\n", "INPUT", ""},
        {"\n\"X\"\nI=2147483647\n#\n1\n", "INPUT", ""},
        {"\n\"X\"\nI=3\n#\n1\n2\n", "FATAL", ""},
        {"\n\"X\"\nI=2\n#\n1.5 1.5\n", "FATAL", ""},
        {"\n\"X\"\nI=1\n# x\ndepth\n", "FATAL", ""},
        {"\n\"X\" \"Y\"\nI=1\n# x\n1\n", "FATAL", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.contents);
        runs::expectEnd(c.kind, file + c.message, [&] { convert(c.contents); });
    }
}

TEST_F(BcLocations, NamesOfTheList) {
    put("to.boundary_conditions",
        "first line\n\t \t wells\t! name of wells\n  ! name\nrim here ! name\n" +
            std::string(400, 'x') + " ! name\n" + std::string(992, ' ') +
            "a ! name\n" + // cut in front of its end
            std::string(993, ' ') + "b ! name\n");
    const int unit = file_units::openTextRead("to.boundary_conditions");
    std::vector<std::string> names{"before"};
    paraview::get_bc_names_from_bc_file(unit, names, 300);
    EXPECT_THAT(names, ElementsAre("before", "wells\t!", "!", "rim", std::string(300, 'x'), "a"));
}

TEST_F(BcLocations, ListsThatAreMissingEmptyOrTooLong) {
    paraview::addition_paraview_bclocationout();
    EXPECT_EQ(takeScreen(), " *o.boundary_conditions FILE DOES NOT EXISTS\n");
    put("to.boundary_conditions", "wells\nrim ! names\ngone ! name\n");
    put("to.Bc.rim.dat", "\n\nI=0\n");
    paraview::addition_paraview_bclocationout();
    EXPECT_EQ(takeScreen(), "");
    EXPECT_EQ(get("to.Bc.rim.vtk"), head("         0"));
    EXPECT_FALSE(std::filesystem::exists("to.Bc.gone.vtk"));

    std::string list;
    for (int i = 0; i < 1000; ++i) list += "n ! name\n";
    put("to.boundary_conditions", list);
    paraview::addition_paraview_bclocationout();
    put("to.boundary_conditions", list + "n ! name\n");
    runs::expectEnd("INPUT", "Error reading file: to.boundary_conditions\n",
                    [] { paraview::addition_paraview_bclocationout(); });
}

TEST(RemoveFront, BlanksAndTabs) {
    for (const char* text : {"a b", "  a b", "\ta b", " \t \t\ta b"}) {
        std::string work = text;
        paraview::remove_front_space_tab(work);
        EXPECT_EQ(work, "a b") << text;
    }
    std::string blank = " \t ";
    paraview::remove_front_space_tab(blank);
    EXPECT_EQ(blank, "");
}

} // namespace
