#include "companion/data_set/data_set_file.hpp"
#include "tests/support/data_set.hpp"
#include "tests/support/runs.hpp"

#include <cmath>
#include <filesystem>

// Compares binary data sets with text data sets of the same problem.
namespace {

using namespace sample_files;
using data_set_file::DataSet;
using data_set_file::Zone;

const std::vector<std::string> tags{"pm", "dual", "frac", "olf", "well", "chan", "tile"};
const std::vector<std::string> plots{"pm_Isopach", "pm_DepthToSurf"};

void expectSameBits(const std::vector<double>& a, const std::vector<double>& b) {
    ASSERT_EQ(a.size(), b.size());
    for (std::size_t i = 0; i < a.size(); ++i)
        ASSERT_TRUE(a[i] == b[i] || (std::isnan(a[i]) && std::isnan(b[i])))
            << "value " << i << ": " << a[i] << " and " << b[i];
}

void expectSame(DataSet binary, DataSet text) {
    EXPECT_EQ(binary.aux.erase("Date_Created"), text.aux.erase("Date_Created"));
    EXPECT_EQ(std::tie(binary.title, binary.variables, binary.aux, binary.units),
              std::tie(text.title, text.variables, text.aux, text.units));
    EXPECT_EQ(binary.trailing, 0);
    ASSERT_EQ(binary.zones.size(), text.zones.size());
    for (std::size_t z = 0; z < binary.zones.size(); ++z) {
        const Zone& a = binary.zones[z];
        const Zone& b = text.zones[z];
        SCOPED_TRACE("zone " + std::to_string(z + 1));
        EXPECT_EQ(std::tie(a.title, a.type, a.strand, a.time, a.nodes, a.elements, a.types,
                           a.centred, a.shares, a.connectivityShare, a.elementNodes),
                  std::tie(b.title, b.type, b.strand, b.time, b.nodes, b.elements, b.types,
                           b.centred, b.shares, b.connectivityShare, b.elementNodes));
        for (std::size_t v = 0; v < a.values.size(); ++v) {
            SCOPED_TRACE(binary.variables[v]);
            expectSameBits(a.values[v], b.values[v]);
        }
    }
}

// Runs the problem in both forms and compares all data sets. Returns their number.
int compareForms(const std::string& topLevel, const std::string& inBlocks) {
    std::string blocks;
    for (const std::string& tag : tags) {
        std::string block = inBlocks;
        for (std::size_t at; (at = block.find('@')) != std::string::npos;)
            block.replace(at, 1, tag);
        blocks += "write " + tag + " domain file\n" + block + "end\n";
    }
    for (const char* mode : {"tecplot mode\n", "tecplot binary mode\n"}) {
        put("t.plot.control", mode + topLevel + "end\n" + blocks +
                                  "plot pm zone isopach structure\n"
                                  "plot pm depth below ground surface\n");
        const runs::Ran ran = runs::runHere();
        EXPECT_EQ(ran.status, 0) << ran.errors;
    }
    int compared = 0;
    for (const std::vector<std::string>& names : {tags, plots})
        for (const std::string& name : names) {
            SCOPED_TRACE(name);
            const std::string text = "to." + name + ".dat", binary = "to." + name + ".szplt";
            const bool exists = std::filesystem::exists(text);
            EXPECT_EQ(exists, std::filesystem::exists(binary));
            if (exists) {
                const data_set::Text parsed = data_set::parse(get(text));
                EXPECT_EQ(parsed.fault, "");
                expectSame(data_set_file::read(binary), parsed.set);
            }
            compared += exists;
        }
    return compared;
}

TEST(BinaryDataSet, HasTheContentsOfTheTextDataSet) {
    struct Case {
        std::string problem, topLevel, inBlocks;
        int dataSets;
    };
    const std::string size = "--nx 5 --ny 4 --layers 3 --times 3";
    const std::string all = size + " --variables all --domains olf,frac,chan,well,tile,dual"
                                   " --species Salt,Heat:heat,Bug:particles,Lime:immobile --hmc 2 ";
    const std::string window = "truncate time domain\n0.01 1e9\n";
    for (const Case& c : {
             Case{size, "", "", 4},
             {all, "", "", 9},
             {all + "--walls", "", "truncate @ domain\n0 1500\n300 1d4\n-1d9 1d9\n", 9},
             {all + "--elements prism --tensor --walls", "tecplot binary flush interval\n2\n", "",
              9},
             {all + "--coupling common", "", "", 9},
             {all + "--generation older --units 7 --coupling mixed", window, "", 9},
             {all, "", "truncate @ domain\n0 120\n-1e20 1e20\n-1e20 1e20\n", 9},
             {all + "--coupling common", "", "truncate @ domain\n0 120\n0 80\n-1e20 1e20\n", 9},
             {all, "", "truncate @ domain\n-2 -1\n-2 -1\n-2 -1\n", 9}, // no element is included
             {size + " --variables all", "", "truncate @ domain by layer\n-1 1e20\n-1 1e20\n2 2\n",
              4},
             {"--nx 60 --ny 40 --layers 20 --times 1", "", // more values than in a piece
              "truncate @ domain\n0 1e20\n20 1e20\n-1e20 1e20\n", 4},
         }) {
        SCOPED_TRACE(c.problem + c.inBlocks);
        const Folder folder;
        makeProblem(c.problem);
        put("batch.pfx", "t\n");
        EXPECT_EQ(compareForms(c.topLevel, c.inBlocks), c.dataSets);
    }
}

// Counts the zones that a viewer finds when the run opens the heads of each output time.
TEST(BinaryDataSet, FlushIntervalsBeginAtTheFirstOutputTimeOfTheRun) {
    const Folder folder;
    write(brickProblem({1, 1, 1, 5}));
    put("t.plot.control", "tecplot binary mode\ntecplot binary flush interval\n3\n"
                          "truncate time domain\n10 1e20\nend\nwrite pm domain file\n");
    static std::map<std::string, std::size_t> zones;
    zones.clear();
    system_calls::table.open = [](const char* path, system_calls::OpenMode mode) {
        const bool head = std::string(path).starts_with("to.head_pm");
        if (head && std::filesystem::exists(path) && std::filesystem::exists("to.pm.szplt"))
            zones[path] = data_set_file::read("to.pm.szplt").zones.size();
        return system_calls::systemTable().open(path, mode);
    };
    EXPECT_EQ(runs::runHere().status, 0);
    EXPECT_EQ(zones, (std::map<std::string, std::size_t>{
                         {"to.head_pm.0003", 0}, {"to.head_pm.0004", 0}, {"to.head_pm.0005", 3}}));
    EXPECT_EQ(data_set_file::read("to.pm.szplt").zones.size(), 4U);
}

// A variable whose number of values is not that of the zone, and an invalid time, end a binary run.
// A text data set would be invalid.
TEST(BinaryDataSet, WrongNumbersOfValuesAndInvalidTimesEndTheRun) {
    const Problem good = brickProblem({2, 1, 1, 1});
    Bytes elements = good.at("to.elements_pm");
    patch(elements, 2, 3, 0); // node 5 is in no element, although the mesh is not truncated
    std::string report;
    for (const auto& [name, contents] : std::vector<std::pair<std::string, Bytes>>{
             {"to.elements_pm", elements},
             {"to.snowdepth.0001", resultFile("0", {Reals(2, 1.0)})}, // without the snow cover
             {"to.head_olf.0001", resultFile("now", {Reals(6, 1.0)})},
             {"to.head_olf.0001", resultFile("/", {Reals(6, 1.0)})},
             {"to.head_olf.0001", resultFile("inf", {Reals(6, 1.0)})},
             {"to.head_olf.0001", resultFile("1e999", {Reals(6, 1.0)})}}) {
        const Folder folder;
        write(good);
        put(name, contents);
        put("t.plot.control", "tecplot binary mode\nend\nwrite pm domain file\nend\n"
                              "write olf domain file\n");
        report += name + ": " + runs::endingOf(runs::runHere().errors) + "\n";
    }
    expectFile("binary_endings.txt", report);
}

} // namespace
