#include "meshrake/derived_columns/topography.hpp"
#include "meshrake/model/run_state.hpp"
#include "meshrake/variables/special_variables.hpp"
#include "meshrake/variables/variable_table.hpp"
#include "tests/support/data_set.hpp"
#include "tests/support/runs.hpp"

#include <limits>

// The columns of each zone for given result files and options.
namespace {

using namespace sample_files;
using namespace runs;

// A result file whose values differ by output time and by file. A shape without values removes the
// file.
struct Shape {
    char type = 'd'; // double, float, integer
    std::size_t components = 1, values = 0;
    std::string text = "0.0";
    double step = 100; // from one output time to the next
};
const Shape noFile, node8{'d', 1, 8}, node4{'d', 1, 4}, node4Single{'f', 1, 4}, element{'d', 1, 1};
const Shape elementSingle{'f', 1, 1}, elementInteger{'i', 1, 1}, vector{'f', 3, 1};
const Shape tensor{'d', 6, 1, "0.0 3"}, diagonal{'d', 3, 1, "0.0 1 rest"};
const Shape ground8{'d', 1, 8, "0.0", 0.125}, ground4{'d', 1, 4, "0.0", 0.125};

Bytes fileOf(const Shape& shape, double value) {
    if (shape.type == 'i')
        return resultFile(shape.text, Integers(shape.values, static_cast<std::int32_t>(value)));
    const Reals reals(shape.values, value);
    if (shape.type == 'd') return resultFile(shape.text, std::vector(shape.components, reals));
    return resultFile(shape.text,
                      std::vector(shape.components, Singles(reals.begin(), reals.end())));
}

struct Case {
    std::string what, domains;
    // Names without "to."; "head_pm.12" is the files of output times 1 and 2.
    std::map<std::string, Shape> files;
    Texts disabled; // options
    int times = 2;
};

// One brick with a surface, a fracture and a channel on it. The first species is both heat and
// particles: heat takes precedence. The last one is immobile.
Problem baseProblem(int times) {
    const Grid grid{1, 1, 1, times};
    Problem problem = brickProblem(grid);
    addSheetDomain(problem, grid, "frac", 12, "", integerRecord({1, 0}) + realRecord({0.25}));
    addSheetDomain(problem, grid, "chan", 16, "", "");
    problem["to.species"] = integerRecords({2, 1}) + textRecord("Heat", 50) +
                            textRecord("Virus", 50) + textRecord("Ca salt", 50) +
                            integerRecords({-1, 0, 1, -1});
    problem["to.hmc"] =
        integerRecords({1, 2, 3, -1, 1, 4, 5}) + textRecord("rain", 80) + integerRecords({6, 7});
    return problem;
}

std::string summaryOf(const Case& c) {
    const Folder folder;
    std::filesystem::create_directory("hmc");
    Problem problem = baseProblem(c.times);
    int number = 0;
    for (const auto& [name, shape] : c.files) {
        const std::size_t times = name.rfind('.') + 1;
        for (const char time : name.substr(times)) {
            const std::string stem = (name[0] == '.' ? "" : "to.") + name.substr(0, times) + "000";
            problem[stem + time] = fileOf(shape, (time - '0') * shape.step + number);
            if (shape.values == 0) problem.erase(stem + time);
        }
        ++number;
    }
    std::string& control = problem["t.plot.control"] = "end\n";
    for (const std::string& domain : data_set::split(c.domains)) {
        control += "write " + domain + " domain file\n";
        for (const std::string& option : c.disabled)
            control += "no " + domain + " " + option + "\n";
        control += "end\n";
    }
    write(problem);
    const std::string ending = endingOf(runHere().errors);
    if (!ending.empty()) return c.what + "\n  " + ending + "\n";
    std::string summary = c.what + "\n";
    for (const std::string& domain : data_set::split(c.domains))
        summary += data_set::summaryOf(data_set::parse(get("to." + domain + ".dat")), true);
    return summary;
}

const Texts heads{"heads"};

// clang-format off
const Case cases[] = {
    {"some heads", "pm", {}, {"pressure heads", "depth to water table"}},
    {"heads missing at output time 2", "pm", {{"head_pm.2", noFile}}, {}},
    {"heads missing at output time 1", "pm", {{"head_pm.1", noFile}}, {}},
    {"walls", "pm", {{"wall_node_pm.1", {'i', 1, 8}}, {"wall_elem_pm.12", elementInteger}}, heads},
    {"full tensor", "pm", {{"ElemK_pm.12", tensor}}, heads},
    {"diagonal tensor", "pm", {{"ElemK_pm.1", diagonal}}, heads},
    {"tensor whose message is not a number", "pm", {{"ElemK_pm.1", {'d', 3, 1, "0.0 full"}}},
     heads},
    {"property file missing at output time 1", "pm", {{"ElemPor_pm.2", elementSingle}}, heads},
    {"constant variables with files at later times", "pm",
     {{"Peclet_pm.12", vector}, {"v_pm.12", vector}}, heads},
    {"both spellings", "pm", {{"ETPMEvap3D_pm.1", node8}, {"ETPmEvap3D_pm.2", node8}}, heads},
    {"option of another variable", "pm",
     {{"tv_por_pm.1", elementSingle}, {"tv_stor_pm.1", element}},
     {"heads", "time varying specific storage"}},
    {"surface", "olf", {}, {}},
    {"surface heads missing at output time 2", "olf", {{"head_olf.2", noFile}}, {}},
    {"each variable by its file", "olf", {{"ETEvap_olf.1", node4}, {"ETActual_olf.12", node4},
     {"ETPmEvap_olf.2", node4}, {"ExchFlux_olf.1", node4Single},
     {"ExchFlux_pm2_olf.12", node4Single}}, heads},
    {"snow", "olf", {{"snowdepth.12", element}, {"snowmelt.12", element}, {"snowcover.12", node4}},
     heads},
    {"snow without its first file", "olf", {{"snowdepth.1", element}, {"snowcover.12", node4}},
     heads},
    {"snow with a file missing later", "olf", {{"snowdepth.12", element}, {"snowmelt.1", element},
     {"snowcover.12", node4}}, heads},
    {"channel", "chan", {{"head_chan.1", node4}, {"incised_head_chan.12", node4},
     {"max_depth_chan.1", node4}}, {"incised heads"}},
    {"head without a time", "chan", {{"head_chan.1", {'d', 1, 4, ""}}}, {}},
    {"aperture", "frac", {{"water_age_frac.1", node4}, {"lp_frac.1", element},
     {"tvtopo_frac.1", node4}}, {}},
    {"redox, a second file", "pm", {{"conc_pm.Heat-Redox.12", node8},
     {"conc_pm.Virus-Redox.2", node8}}, heads},
    {"redox, a file missing", "pm", {{"conc_pm.Heat-Redox.12", node8},
     {"conc_pm.Virus-Redox.1", node8}}, heads},
    {"redox, the first file missing", "pm", {{"conc_pm.Heat-Redox.1", node8},
     {"conc_pm.Virus-Redox.12", node8}}, heads},
    {"redox, the file of the first species missing at output time 1", "pm",
     {{"conc_pm.Heat-Redox.2", node8}, {"conc_pm.Virus-Redox.12", node8}},
     heads},
    {"topography", "pm,olf", {{"tvtopo_olf.123", ground4}, {"tvtopo_pm.123", ground8},
     {"tvtopo_zone_pm.123", elementInteger}}, {}, 3},
    {"topography missing at output time 2", "pm,olf",
     {{"tvtopo_olf.13", ground4}, {"tvtopo_pm.13", ground8},
      {"tvtopo_zone_pm.13", elementInteger}}, {}, 3},
    {"topography missing at output time 1", "pm,olf",
     {{"tvtopo_olf.23", ground4}, {"tvtopo_pm.23", ground8},
      {"tvtopo_zone_pm.23", elementInteger}}, {}, 3},
};
// clang-format on

TEST(Columns, FollowFilesAndOptions) {
    std::string summaries;
    for (const Case& c : cases) summaries += summaryOf(c);
    expectFile("columns.txt", summaries);
}

// Variables with a file for each species or mixing fraction. Each combination of the files is
// missing at the first or the second of three output times.
TEST(Columns, FamiliesFollowTheirFiles) {
    const auto ofSpecies = [](const std::string& stem, std::size_t count) {
        Texts files;
        for (const char* species : {"Heat", "Virus", "Ca salt"})
            if (files.size() < count) files.push_back(stem + "_pm." + species);
        return files;
    };
    const std::string hmc = "./hmc/to.hmc_pm.";
    std::string summaries;
    for (const Texts& family :
         {ofSpecies("conc", 3), ofSpecies("concsolid", 2), ofSpecies("iconc", 3),
          ofSpecies("ExchSol", 2), ofSpecies("ExchSolAdv", 2), ofSpecies("DualExchSolAdv", 2),
          ofSpecies("ExchSolDisp", 2), ofSpecies("DualExchSolDisp", 2), ofSpecies("mass_sorbed", 1),
          Texts{hmc + "f_rain", hmc + "mixing_ratio", hmc + "hmc_error"}})
        for (const std::string gap : {"23", "13"})
            for (unsigned present = 0; present < 1U << family.size(); ++present) {
                Case c{"", "pm", {}, heads, 3};
                for (std::size_t m = 0; m < family.size(); ++m) {
                    const std::string file =
                        family[m] + "." + ((present >> m & 1) != 0 ? "123" : gap);
                    const bool single = file.find("ExchSol") != std::string::npos;
                    c.files[file] = {single ? 'f' : 'd', 1, 8};
                    c.what += file + "  ";
                }
                summaries += summaryOf(c);
            }
    expectFile("family_columns.txt", summaries);
}

// All families in one problem: their columns are in order and only in their domains.
TEST(Columns, FamiliesAreInTheirDomains) {
    const Folder folder;
    makeProblem("--nx 3 --ny 2 --layers 2 --times 1 --domains dual,olf --hmc 2 "
                "--species Heat:heat,Virus:particles,Ca:immobile --variables conc,concsolid,iconc,"
                "ExchSol,ExchSolAdv,DualExchSolAdv,ExchSolDisp,DualExchSolDisp,conc-Redox,"
                "mass_sorbed,hmc");
    ASSERT_EQ(runHere().status, 0);
    std::string summaries;
    for (const std::string tag : {"pm", "dual", "olf"})
        summaries += tag + "\n" + data_set::summaryOf(data_set::parse(get("to." + tag + ".dat")));
    expectFile("family_domains.txt", summaries);
}

class ColumnValues : public ProblemRun {
protected:
    ColumnValues() { problem = baseProblem(2); }

    static Reals valuesOf(const std::string& tag, std::size_t zone, const std::string& label) {
        return data_set::valuesOf(data_set::parse(get("to." + tag + ".dat")), zone, label);
    }
};

// A run that resumes without files shows a warning for each file, before the number of its column.
// The first file also has one from the test whether the data set has the family.
TEST_F(ColumnValues, FamiliesFallBackToTheFirstIndex) {
    for (const std::string species : {"Heat", "Virus", "Ca salt"})
        problem["to.conc_pm." + species + ".0001"] = fileOf(node8, 1);
    problem["to.tec_append"] = integerRecord({1});
    const std::string warning = "Warning: file not found -> appending at time index 0001\n";
    EXPECT_THAT(run("tecplot binary mode\ntecplot binary append\nend\nwrite pm domain file\n"
                    "no pm heads\n")
                    .screen,
                HasSubstr("Thickness\n" + warning + warning + "   8     Heat\n" + warning +
                          "   9     Virus\n" + warning + "  10     Ca salt\n"));
}

TEST_F(ColumnValues, WaterDepths) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    problem["to.head_olf.0001"] = resultFile("0.0", {Reals{1.5, 1.0, 0.5, nan}});
    problem["to.head_olf.0002"] =
        resultFile("0.0", {Reals{1.0 + 0x1p-30, 101.0, 1.0 + 1e-4, -1e300}});
    ASSERT_EQ(run().status, 0);
    EXPECT_EQ(valuesOf("olf", 0, "Depth"), (Reals{0.5, 0, 0, 0}));
    EXPECT_EQ(valuesOf("olf", 1, "Depth"),
              (Reals{0.93132257461547852E-009, 100, 0.99999997473787516E-004, 0}));
    const Reals logarithms = valuesOf("olf", 0, "log10(Depth)");
    EXPECT_EQ(Reals(logarithms.begin(), logarithms.end() - 1),
              (Reals{-0.30103000998497009, -8, -8}));
    EXPECT_NE(logarithms[3], logarithms[3]);
    EXPECT_EQ(valuesOf("olf", 1, "log10(Depth)"), (Reals{-8, 2, -4, -8}));
}

// Columns, layers and thicknesses of 2 by 1 by 2 bricks, whole and truncated.
TEST_F(ColumnValues, MeshColumns) {
    problem = brickProblem({2, 1, 2, 2});
    ASSERT_EQ(run().status, 0);
    EXPECT_EQ(valuesOf("pm", 0, "Layer #"), (Reals{1, 1, 2, 2}));
    EXPECT_EQ(valuesOf("pm", 0, "Column #"), (Reals{1, 2, 1, 2}));
    run("end\nwrite pm domain file\ntruncate pm domain by layer\n1 2\n0 1\n2 2\nend\n"
        "write olf domain file\ntruncate olf domain\n1 2\n0 1\n0 9\nend\n");
    for (const std::string label : {"Layer #", "Column #", "Thickness"})
        EXPECT_EQ(valuesOf("pm", 0, label), Reals{2});
    EXPECT_EQ(valuesOf("olf", 0, "3D node #"), (Reals{14, 15, 17, 18}));
    // Element zones with a file for each output time are not shared.
    problem["to.tv_zone_pm.0002"] = resultFile("0.0", Integers{9, 8, 7, 6});
    run("end\nwrite pm domain file\nno pm layer numbers\nno pm column numbers\n"
        "no pm element thickness\nno pm heads\n");
    EXPECT_THAT(get("to.pm.dat"),
                HasSubstr("VARLOCATION=([4]=CELLCENTERED), VARSHARELIST=([1,2,3])"));
    EXPECT_EQ(valuesOf("pm", 1, "zone (cell centred)"), (Reals{9, 8, 7, 6}));
}

// A mesh of tetrahedra declares no depth columns, but its later zones have their values.
TEST_F(ColumnValues, TetrahedraHaveDepthsInLaterZones) {
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

class Steps : public PartOfRun {};

// No pass calls pecletRead: all zones share the numbers of zone 1.
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

// A resumed run without elevations uses those of the first index in its time window, once for the
// heads and once for the column. For the element zones it uses index 1. Each warning is before the
// number of its column.
TEST_F(Steps, TopographyFallsBackToTheFirstIndexInTheTimeWindow) {
    Problem problem = brickProblem({1, 1, 1, 1});
    problem["to.tvtopo_pm.0001"] = resultFile("0.0", {Reals(8, 7.0)});
    problem["to.tvtopo_pm.0003"] = resultFile("0.0", {Reals(8, 0.5)});
    problem["to.tv_zone_pm.0001"] = resultFile("0.0", Integers{5});
    write(problem);
    model::Domain pm;
    create(pm, "pm", pm);
    model::run.tecplotAppend = true;
    model::run.appendFirstIndex = 3;
    model::run.timeSuffix = "0009";
    takeScreen();
    const auto table = variables::variableTable();
    for (const auto& row : table) pm.outputVars.push_back({row.key, false, false, {}});
    for (std::size_t i = 0; i < table.size(); ++i)
        if (table[i].key == "zone" || table[i].key.starts_with("tvTopo"))
            table[i].init(pm, table[i], pm.outputVars[i]);
    EXPECT_EQ(derived_columns::elevation(pm), Reals(8, 0.5));
    EXPECT_EQ(pm.elementZone, Integers{5});
    const std::string warning = "Warning: file not found -> appending at time index 000";
    EXPECT_EQ(takeScreen(), warning + "1\n   1     Zone\n" + warning + "3\n" + warning +
                                "3\n   2     tvTopoZ\n   3     tvTopoZAbsDiff\n");
}

} // namespace
