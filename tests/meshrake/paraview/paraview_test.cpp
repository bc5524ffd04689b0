#include "meshrake/model/run_state.hpp"
#include "meshrake/paraview/array_rows.hpp"
#include "meshrake/paraview/multi_paraview.hpp"
#include "tests/support/runs.hpp"
#include "tvncommon/io/file_units.hpp"

#include <cstdlib>
#include <limits>
#include <sstream>
#include <sys/wait.h>

namespace {

using namespace sample_files;
using namespace runs;
using model::Domain;
using model::run;

TEST(Paraview, RowsOfEveryWriter) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    const Folder folder;
    const int unit = file_units::openTextReplace("rows", io_layer::Flush::inBlocks);
    const std::uint8_t mask[] = {1, 0, 1, 1, 1, 1};
    const paraview::Extent few{3, mask, false}, truncated{3, mask, true}, many{6, mask, true};
    Reals values{1.000000002e-30, 2, 3, 4, 5, -1.5e-30, 7};
    const Singles a{1, 2, 1e-31F};
    const Reals x{0, 9, -0.0, 0.1, -12.34567, 99999.4}, y{1e99, 9, -1e-200, infinity, nan, 1},
        limits{0.0999994, 9, 0.0999996, 99999.6, 1.03125, 1.09375};
    paraview::write_paraview_darray(values, {7, nullptr, false}, "POINT_DATA,SCALARS h", 1, unit);
    paraview::write_paraview_array(a, few, "CELL_DATA,SCALARS s", 2, unit);
    paraview::write_paraview_array(a, truncated, "CELL_DATA,SCALARS t", 3, unit);
    paraview::write_paraview_vector_array(a, a, a, truncated, "CELL_DATA,VECTORS c", 4, unit);
    paraview::write_paraview_vector_darray(x, y, limits, many, "CELL_DATA,VECTORS d", 5, unit);
    paraview::write_paraview_vector_2d_array(a, a, few, "CELL_DATA,VECTORS e", 1, unit);
    paraview::write_paraview_vector_2d_darray(y, x, many, "CELL_DATA,VECTORS f", 6, unit);
    file_units::freeUnit(unit);
    EXPECT_EQ(values[0], 0);
    expectFile("rows.vtk", get("rows"));
}

// Nodes at x = y = z = 1, 2, ..., linked to pm nodes 100, 200, ...
class Writer : public PartOfRun {
protected:
    Writer() {
        run.timeSuffix = "0003";
        run.timeIndex = run.firstTimeIndex = 3;
        run.currentTimeText = "  7.5 minutes";
        run.titleLines = {"first ", "last"};
        run.numTitleLines = 1;
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

    static model::OutputVar& add(Domain& domain, const char* key, std::size_t columns) {
        model::OutputVar& var = domain.outputVars.emplace_back();
        var.key = key;
        var.firstExists = true;
        var.columns.resize(columns);
        return var;
    }

    static std::string written(Domain& domain) {
        paraview::multiParaview(domain);
        return get("to." + domain.name + ".0003.vtk");
    }
};

TEST_F(Writer, CellsOfEveryKind) {
    const std::pair<std::int32_t, Integers> cases[] = {
        {2, {1, 2, 2, 3}},
        {3, {1, 2, 3}},
        {4, {1, 2, 3, 0, 5, 6, 7, -1}}, // 0 is an unused slot
        {6, {1, 2, 3, 4, 5, 6}},
        {8, {1, 2, 3, 4, 5, 6, 7, 0}},
        {5, {1, 2, 3, 4, 5}},
    };
    std::string text;
    for (const auto& [nodesPerElement, slots] : cases) {
        Domain domain = makeDomain("pm", model::tags::pm, 8, nodesPerElement, slots);
        domain.nnTruncated = 0;
        text += written(domain);
    }
    expectFile("cells.vtk", text);
}

TEST_F(Writer, TitleReportAndErrors) {
    Domain domain = makeDomain("pm", model::tags::pm, 1, 2, {});
    run.numTitleLines = 2;
    EXPECT_THAT(written(domain), HasSubstr("\nlast\nASCII\n"));
    EXPECT_EQ(takeEcho(), "");
    run.timeIndex = 1;
    written(domain);
    const std::string name = "to.pm.0003.vtk";
    EXPECT_EQ(takeEcho(), " \n" + std::string(48, '-') + "\npm data to paraview\n" +
                              "Creating paraview file " + name +
                              std::string(300 - name.size(), ' ') + "\n");
    run.timeIndex = 3;
    run.timeFile = "to.head_pm.0003";
    for (const std::string text : {"soon", "/"}) {
        run.currentTimeText = text;
        expectEnd("INPUT",
                  "Error reading file: to.head_pm.0003\nThe time stamp is not a number: " + text,
                  [&] { written(domain); });
    }
    run.problemPrefix = "nowhere/t";
    expectEnd("FATAL", "Failed to open file: nowhere/to.pm.0003.vtk", [&] { written(domain); });
}

TEST_F(Writer, TruncatedDomainsHaveNoScalars) {
    Domain domain = makeDomain("well", model::tags::well, 4, 2, {1, 2, 2, 3, 3, 4});
    domain.outputIsPacked = true;
    domain.nodeIncluded = {0, 1, 1, 0};
    domain.elementIncluded = {0, 1, 0};
    domain.nnTruncated = 2;
    domain.neTruncated = 1; // the included element is not the first
    add(domain, "head", 1).columns[0].real8 = {1e-31, 2, 3, 4};
    for (model::Column& column : add(domain, "vel", 3).columns) column.real4 = {1, 2, 3};
    expectFile("truncated.well.vtk", written(domain));
    EXPECT_EQ(domain.outputVars[0].columns[0].real8[0], 1e-31);
}

// Returns the lines that begin arrays and sections.
std::string sections(const std::string& text) {
    std::istringstream in(text);
    std::string lines;
    for (std::string line; std::getline(in, line);)
        for (const char* word : {"POINT_DATA", "CELL_DATA", "SCALARS", "VECTORS"})
            if (line.starts_with(word)) lines += line + "\n";
    return lines;
}

TEST_F(Writer, MissingColumnsAndDisabledOptions) {
    Domain surface = makeDomain("olf", model::tags::olf, 2, 2, {1, 2});
    run.speciesNames = {"A", "B"};
    add(surface, "head", 3);
    add(surface, "rainSnowmelt", 5).columns[1].real8 = {7};
    add(surface, "exchSolAdv", 1).columns[0].real4 = {1, 2}; // B is immobile
    for (const char* key : {"heads", "exchFluxDual", "et3dEvap", "iceSat"}) add(surface, key, 1);
    model::optionOf(surface, model::Option::heads).enabled = false;
    std::string report = written(surface);

    Domain ground = makeDomain("pm", model::tags::pm, 1, 2, {1, 1});
    add(ground, "head", 1).firstExists = false;
    for (const char* key : {"depth2gwt", "iceSat", "sat"}) add(ground, key, 1);
    model::optionOf(ground, model::Option::iceSaturation).enabled = false;
    report += sections(written(ground));

    Domain fractures = makeDomain("frac", model::tags::frac, 3, 2, {1, 1});
    add(fractures, "sat", 1);
    add(fractures, "elemPor", 1);
    report += sections(written(fractures));
    model::optionOf(fractures, model::Option::aperture).enabled = false;
    report += sections(written(fractures));
    expectFile("missing_columns.vtk", report);
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
    problem["to.v_pm.0001"] =
        resultFile("0.0", std::vector<Singles>{{1.5F, -2}, {0, 1e-31F}, {1e10F, 0.125F}});
    problem["to.ElemPor_pm.0001"] = resultFile("0.0", std::vector<Singles>{{0.25F, 0.3F}});
    write(problem);
    EXPECT_EQ(runVtk(), 0) << get("errors");
    for (const std::string name : {"pm.0001", "pm.0002", "olf.0001"})
        expectFile("brick." + name + ".vtk", get("to." + name + ".vtk"));
    EXPECT_THAT(get("to.meshrake.eco"),
                HasSubstr("\nolf data to paraview\nCreating paraview file "));
    EXPECT_THAT(get("screen"), HasSubstr("FILE DOES NOT EXISTS"));
    const std::string plotFile = getDated("to.pm.dat");
    std::filesystem::remove("to.pm.0001.vtk");
    EXPECT_EQ(runVtk(MESHRAKE_PROGRAM), 0);
    EXPECT_FALSE(std::filesystem::exists("to.pm.0001.vtk"));
    EXPECT_EQ(getDated("to.pm.dat"), plotFile);
}

TEST_F(VtkRun, SectionsOfAllVariables) {
    makeProblem("--nx 2 --ny 2 --layers 1 --times 1 --domains pm,dual,olf,frac,chan,well,tile "
                "--variables all --species Nitrate,Calcite:immobile --hmc 1");
    EXPECT_EQ(runVtk(), 0) << get("errors");
    std::string text;
    for (const std::string domain : {"pm", "dual", "olf", "frac", "chan", "well", "tile"})
        text += domain + "\n" + sections(get("to." + domain + ".0001.vtk"));
    expectFile("all.sections", text);
}

TEST_F(VtkRun, WritesOnlyRequestedDomainsWithTheirOwnNodes) {
    makeProblem("--nx 2 --ny 2 --layers 1 --times 1 --domains pm,olf,chan --coupling mixed");
    put("t.plot.control", "end\nwrite olf domain file\nend\nwrite chan domain file\nend\n");
    EXPECT_EQ(runVtk(), 0) << get("errors");
    for (const std::string domain : {"pm", "olf", "chan"})
        EXPECT_EQ(std::filesystem::exists("to." + domain + ".0001.vtk"), domain == "chan");
}

} // namespace
