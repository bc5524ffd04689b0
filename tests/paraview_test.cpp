#include "meshrake/meshrake.hpp"
#include "meshrake/model/run_state.hpp"
#include "meshrake/paraview/array_rows.hpp"
#include "meshrake/paraview/multi_paraview.hpp"
#include "tests/runs.hpp"
#include "tvncommon/file_units.hpp"

#include <gmock/gmock.h>

#include <cstdlib>
#include <limits>
#include <sstream>
#include <sys/wait.h>

namespace {

using namespace sample_files;
using model::Domain;
using model::run;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

using Texts = std::vector<std::string>;

Texts linesOf(const std::string& text) {
    std::istringstream in(text);
    Texts lines;
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

TEST(Paraview, NarrowReals) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    struct Case {
        double value;
        const char* text;
    };
    const Case cases[] = {
        {0, "     0.0000    "},
        {-0.0, "    -0.0000    "},
        {1, "     1.0000    "},
        {-12.34567, "    -12.346    "},
        {0.1, "    0.10000    "},
        {0.0999994, "    0.99999E-01"},
        {0.0999996, "    0.10000    "},
        {99999.4, "     99999.    "},
        {99999.6, "    0.10000E+06"},
        {1.03125, "     1.0312    "}, // ties
        {1.09375, "     1.0938    "},
        {-1.0e-31, "   -0.10000E-30"},
        {static_cast<double>(3.4e38F), "    0.34000E+39"},
        {1e99, "***************"},
        {1e-200, "***************"},
        {-1e200, "***************"},
        {infinity, "       Infinity"},
        {std::numeric_limits<double>::quiet_NaN(), "            NaN"},
    };
    for (const Case& c : cases) EXPECT_EQ(paraview::narrowReal(c.value), c.text) << c.value;
}

// A line of nodes at x = 1, 2, ... under which pm has the same ones.
class Writer : public runs::PartOfRun {
protected:
    Writer() {
        run.timeSuffix = "0003";
        run.timeIndex = 3;
        run.currentTimeText = "  7.5 minutes";
        run.titleLines = {"first", "last"};
    }

    static Domain makeDomain(const std::string& tag, model::DomainSet bit, std::int32_t nodes,
                             std::int32_t nodesPerElement, const Integers& slots) {
        Domain domain;
        domain.name = tag;
        domain.tag = bit;
        domain.nodeCount = domain.nnTruncated = nodes;
        domain.nodesPerElement = nodesPerElement;
        domain.elementNodes = slots;
        domain.elementCount = domain.neTruncated =
            static_cast<std::int32_t>(slots.size()) / nodesPerElement;
        for (std::int32_t i = 1; i <= nodes; ++i) {
            domain.x.push_back(i);
            domain.nodeRenumber.push_back(i);
            domain.linkToPm.push_back(100 * i);
        }
        domain.y = domain.z = domain.x;
        domain.nodeIncluded.assign(static_cast<std::size_t>(nodes), 1);
        domain.elementIncluded.assign(static_cast<std::size_t>(domain.elementCount), 1);
        return domain;
    }

    static void add(Domain& domain, const char* key, const std::vector<Reals>& columns,
                    bool single = false) {
        model::OutputVar& var = domain.outputVars.emplace_back();
        var.key = key;
        var.firstExists = true;
        for (const Reals& values : columns) {
            model::Column& column = var.columns.emplace_back();
            if (single)
                column.real4.assign(values.begin(), values.end());
            else
                column.real8 = values;
        }
    }

    static Texts write(Domain& domain) {
        paraview::multiParaview(domain);
        return linesOf(get("to." + domain.name + ".0003.vtk"));
    }

    // What stands behind the points, up to the data.
    static std::string cells(Domain& domain) {
        const Texts lines = write(domain);
        std::string text;
        for (std::size_t i = 9 + static_cast<std::size_t>(domain.nnTruncated);
             i < lines.size() &&
             lines[i] != "POINT_DATA          " + std::to_string(domain.nodeCount);
             ++i)
            text += lines[i] + "|";
        return text;
    }
};

TEST_F(Writer, CellsOfEveryKind) {
    struct Case {
        std::int32_t nodesPerElement;
        Integers slots;
        const char* text;
    };
    const Case cases[] = {
        {2,
         {1, 2, 2, 3},
         "|CELLS          2          6|2         0          1 |"
         "2         1          2 ||CELL_TYPES          2|3|3|"},
        {3,
         {1, 2, 3},
         "|CELLS          1          5|4         0          1          2          2 |"
         "|CELL_TYPES          1|8|"},
        {4,
         {1, 2, 3, 0, 5, 6, 7, 8},
         "|CELLS          2         10|4         0          1          2          2 |"
         "4         4          5          6          7 ||CELL_TYPES          2|8|9|"},
        {6,
         {1, 2, 3, 4, 5, 6},
         "|CELLS          1|         9|8         0          1          2          2          3"
         "          4          5          5 ||CELL_TYPES          1|12|"},
        {8,
         {1, 2, 3, 4, 5, 6, 7, -1},
         "|CELLS          1|         9|8         0          1          2          3          4"
         "          5          6         -1 ||CELL_TYPES          1|12|"},
        {5, {1, 2, 3, 4, 5}, "|CELL_TYPES          1|"},
        {7, {1, 2, 3, 4, 5, 6, 7}, "|CELL_TYPES          1|"},
    };
    for (const Case& c : cases) {
        Domain domain = makeDomain("pm", model::tags::pm, 8, c.nodesPerElement, c.slots);
        EXPECT_EQ(cells(domain), c.text) << c.nodesPerElement;
    }
}

TEST_F(Writer, HeadOfTheFile) {
    Domain domain = makeDomain("pm", model::tags::pm, 1, 2, {});
    run.numTitleLines = 2;
    EXPECT_EQ(write(domain)[1], "last");
    run.numTitleLines = 1;
    EXPECT_THAT(write(domain),
                ElementsAre("# vtk DataFile Version 1.0", "first", "ASCII", "",
                            "DATASET UNSTRUCTURED_GRID", "FIELD FieldData 1", "TIME 1 1 double",
                            "   7.5000000000000000     ", "POINTS          1 double",
                            "   1.0000000000000000         1.0000000000000000    "
                            "     1.0000000000000000     ",
                            "", "CELLS          0          0", "", "CELL_TYPES          0"));
    EXPECT_EQ(takeEcho(), "");
    run.timeIndex = 1;
    write(domain);
    const std::string name = "to.pm.0003.vtk";
    EXPECT_EQ(takeEcho(), " \n" + std::string(48, '-') + "\npm data to paraview\n" +
                              "Creating paraview file " + name +
                              std::string(300 - name.size(), ' ') + "\n");
    run.currentTimeText = "soon";
    run.timeFile = "to.head_pm.0003";
    runs::expectEnd("INPUT",
                    "Error reading file: to.head_pm.0003\nThe time stamp is no number: soon",
                    [&] { write(domain); });
    run.timeIndex = 3;
    run.problemPrefix = "nowhere/t";
    runs::expectEnd("FATAL", "Failed to open file: nowhere/to.pm.0003.vtk", [&] { write(domain); });
}

// Lines of the sections, without values.
Texts sections(const Texts& lines) {
    Texts kept;
    for (const std::string& line : lines)
        for (const char* word : {"POINT_DATA", "CELL_DATA", "SCALARS", "VECTORS"})
            if (line.starts_with(word)) kept.push_back(line);
    return kept;
}

TEST_F(Writer, SurfaceWithAllItsVariables) {
    Domain domain = makeDomain("olf", model::tags::olf, 2, 2, {1, 2});
    run.speciesNames = {"A", "B"};
    run.hmcFractionNames = {"f_x"};
    const Reals two{1, 2}, one{1};
    add(domain, "head", {two, {}, {}});
    domain.outputVars[0].columns[1].real4 = {0.5F, 1e-31F};
    domain.outputVars[0].columns[2].real4 = {1, 2};
    for (const char* key : {"etEvap", "etPmEvap", "etPmTranspire", "etActual"})
        add(domain, key, {two});
    add(domain, "rainSnowmelt", {{}, one, one, one, two}); // the first file was not there
    for (const char* key : {"exchFlux", "exchFluxPm", "exchFluxOlf"}) add(domain, key, {two}, true);
    add(domain, "conc", {two, two});
    add(domain, "hmc", {two, two, two});
    add(domain, "exchSolAdv", {two}, true);
    add(domain, "exchSolDisp", {two}, true);
    for (const char* key : {"sat", "envH", "iceSat", "depth2gwt", "et3dEvap", "exchFluxDual"})
        add(domain, key, {two}); // none of these belongs to a surface but the first
    for (const char* key : {"vel", "peclet", "diffPeclet"}) add(domain, key, {one, one, one}, true);
    add(domain, "elemK", {one, one, one});
    add(domain, "elemPor", {one}, true);
    for (const char* key : {"elemStor", "elemTort", "elemIbedFraction", "elemVolume"})
        add(domain, key, {one});
    add(domain, "permafrost", {one}, true);
    const Texts lines = write(domain);
    EXPECT_THAT(
        sections(lines),
        ElementsAre("POINT_DATA          2", "SCALARS head float", "SCALARS depth float",
                    "SCALARS log10Depth float", "SCALARS saturation float",
                    "SCALARS surface_water_evapopration float",
                    "SCALARS surface_evapopration float", "SCALARS surface_transpiration float",
                    "SCALARS Actual_ET float", "SCALARS snowdepth float", "SCALARS snowmelt float",
                    "SCALARS liquid_precipitation float", "SCALARS solid_precipitation float",
                    "SCALARS snowcover float", "SCALARS exchange_flux float",
                    "SCALARS exchange_flux_pm2 float", "SCALARS exchange_flux_olf2 float",
                    "SCALARS A float", "SCALARS B float", "SCALARS f_x float",
                    "SCALARS adv_solute_exchange float", "SCALARS adv_solute_exchange float",
                    "SCALARS disp_solute_exchange float", "SCALARS disp_solute_exchange float",
                    "SCALARS 3D_node int", "CELL_DATA          1",
                    "VECTORS linear_velocity_xyz float", "VECTORS Peclet_xyz float",
                    "VECTORS Diffusion_Peclet_xyz float", "SCALARS Kxx float", "SCALARS Kyy float",
                    "SCALARS Kzz float", "SCALARS Porosity float", "SCALARS Porosity float",
                    "SCALARS Tortuosity float", "SCALARS IbedFractionosity float",
                    "SCALARS Volume float", "SCALARS Permafrost float"));
    const std::string text = get("to.olf.0003.vtk");
    EXPECT_THAT(text,
                HasSubstr("\nSCALARS snowdepth float\nLOOKUP_TABLE default\n\nSCALARS snowm"));
    EXPECT_THAT(text, HasSubstr("\nSCALARS depth float\nLOOKUP_TABLE default\n"
                                "    0.50000        0.10000E-30\n"));
    EXPECT_THAT(text, HasSubstr("adv_solute_exchange float\nLOOKUP_TABLE default\n"
                                "     0.0000         0.0000    \n"));
    EXPECT_THAT(text, HasSubstr("SCALARS 3D_node int\nLOOKUP_TABLE default\n"
                                "                       100\n                       200\n"
                                "\nCELL_DATA          1\nVECTORS linear_velocity_xyz float\n"
                                "     1.0000         1.0000         1.0000    \n"));
}

TEST_F(Writer, GroundAndFractures) {
    Domain ground = makeDomain("pm", model::tags::pm, 1, 2, {1, 1});
    for (const char* key : {"head", "envH", "sat", "iceSat", "et3dEvap", "et3dTranspire"})
        add(ground, key, {{1}});
    add(ground, "depth2gwt", {});
    model::optionOf(ground, model::Option::iceSaturation).enabled = false;
    EXPECT_THAT(sections(write(ground)),
                ElementsAre("POINT_DATA          1", "SCALARS head float",
                            "SCALARS ice_saturation float", "SCALARS saturation float",
                            "SCALARS Depth2GWT float", "SCALARS subsurface_evaporation float",
                            "SCALARS subsurface_transpiration float"));
    Domain fractures = makeDomain("frac", model::tags::frac, 1, 2, {1, 1});
    fractures.fractureAperture = {0.25};
    add(fractures, "sat", {{1}}, true);
    add(fractures, "elemPor", {{0.5}}, true);
    EXPECT_THAT(write(fractures),
                testing::IsSupersetOf(
                    {"POINT_DATA          1", "SCALARS aperture float", "CELL_DATA          1"}));
    model::optionOf(fractures, model::Option::aperture).enabled = false;
    const Texts lines = write(fractures);
    EXPECT_THAT(sections(lines), ElementsAre("POINT_DATA          1", "SCALARS 3D_node int",
                                             "CELL_DATA          1", "SCALARS Porosity float"));
}

TEST_F(Writer, TruncatedDomainsHaveNoScalars) {
    Domain domain = makeDomain("well", model::tags::well, 4, 2, {1, 2, 2, 3, 3, 4});
    domain.truncateEnabled = true;
    domain.nodeIncluded = {0, 1, 1, 0};
    domain.elementIncluded = {0, 1, 0};
    domain.nodeRenumber = {0, 1, 2, 0};
    domain.nnTruncated = 2;
    domain.neTruncated = 1; // the included one is not the first
    add(domain, "head", {{1e-31, 2, 3, 4}});
    add(domain, "vel", {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}}, true);
    Texts lines = write(domain);
    lines.erase(lines.begin(), lines.begin() + 8);
    EXPECT_THAT(lines,
                ElementsAre("POINTS          2 double", HasSubstr(" 1.000"), HasSubstr(" 2.000"),
                            "", "CELLS          1          3", "", "CELL_TYPES          1", "",
                            "POINT_DATA          4", "SCALARS head float", "LOOKUP_TABLE default",
                            "SCALARS 3D_node int", "LOOKUP_TABLE default",
                            "                       200", "                       300", "",
                            "CELL_DATA          3", "VECTORS linear_velocity_xyz float",
                            "     2.0000         5.0000         8.0000    "));
    EXPECT_EQ(domain.outputVars[0].columns[0].real8[0], 1e-31);
}

TEST_F(Writer, RowsOfEveryWriter) {
    const int unit = file_units::openTextReplace("rows", io_layer::Flush::inBlocks);
    const std::uint8_t mask[] = {1, 0, 1};
    const paraview::Extent extent{3, mask, false};
    Reals values{1e-31, 2, 3, 4, 5, -1.5e-30, 7};
    const std::vector<float> a{1, 2, 3};
    const Reals b{4, 5, 6};
    paraview::write_paraview_darray(values, {7, nullptr, false}, "POINT_DATA,SCALARS h", 1, unit);
    paraview::write_paraview_vector_darray(b, b, b, extent, "CELL_DATA,VECTORS d", 2, unit);
    paraview::write_paraview_vector_2d_array(a, a, extent, "CELL_DATA,VECTORS e", 1, unit);
    paraview::write_paraview_vector_2d_darray(b, b, extent, "CELL_DATA,VECTORS f", 3, unit);
    file_units::freeUnit(unit);
    EXPECT_EQ(values[0], 0);
    const std::string four = "     4.0000    ", six = "     6.0000    ";
    const std::string one = "     1.0000    ", three = "     3.0000    ";
    EXPECT_THAT(linesOf(get("rows")),
                ElementsAre("", "POINT_DATA          7", "SCALARS h", "LOOKUP_TABLE default",
                            "     0.0000         2.0000    " + three + four +
                                "     5.0000       -0.15000E-29",
                            "     7.0000    ", "", "VECTORS d", four + four + four, six + six + six,
                            "", "CELL_DATA          3", "VECTORS e", one + one, three + three, "",
                            "VECTORS f", four + four, six + six));
}

class VtkRun : public testing::Test {
protected:
    static int runVtk(const std::string& program = MESHRAKE_VTK_PROGRAM) {
        const int status = std::system((program + " <batch.pfx >screen 2>errors").c_str());
        return WEXITSTATUS(status);
    }
    const Folder folder;
};

TEST_F(VtkRun, FilesOfABrickProblem) {
    const Grid grid{.nx = 2, .ny = 1, .layers = 1, .times = 2};
    Problem problem = brickProblem(grid);
    problem["to.v_pm.0001"] = resultFile(
        "0.0", std::vector<std::vector<float>>{{1.5F, -2}, {0, 1e-31F}, {1e10F, 0.125F}});
    problem["to.ElemPor_pm.0001"] =
        resultFile("0.0", std::vector<std::vector<float>>{{0.25F, 0.3F}});
    write(problem);
    EXPECT_EQ(runVtk(), 0) << get("errors");
    for (const char* name : {"pm.0001", "pm.0002", "olf.0001"})
        EXPECT_EQ(get("to." + std::string(name) + ".vtk"),
                  expected("brick." + std::string(name) + ".vtk"))
            << name;
    EXPECT_THAT(get("to.meshrake.eco"),
                HasSubstr("\nolf data to paraview\nCreating paraview file "));
    EXPECT_THAT(get("screen"), HasSubstr("FILE DOES NOT EXISTS"));
    const std::string plotFile = getDated("to.pm.dat");
    std::filesystem::remove("to.pm.0001.vtk");
    EXPECT_EQ(runVtk(MESHRAKE_PROGRAM), 0);
    EXPECT_FALSE(std::filesystem::exists("to.pm.0001.vtk"));
    EXPECT_EQ(getDated("to.pm.dat"), plotFile);
}

TEST_F(VtkRun, OnlyDomainsThatAreWrittenAndHaveNodesOfTheirOwn) {
    makeProblem("--nx 2 --ny 2 --layers 1 --times 1 --domains pm,olf,chan --coupling mixed");
    put("t.plot.control", "end\nwrite olf domain file\nend\nwrite chan domain file\nend\n");
    EXPECT_EQ(runVtk(), 0) << get("errors");
    for (const char* domain : {"pm", "olf", "chan"})
        EXPECT_EQ(std::filesystem::exists("to." + std::string(domain) + ".0001.vtk"),
                  domain == std::string("chan"))
            << domain;
}

} // namespace
