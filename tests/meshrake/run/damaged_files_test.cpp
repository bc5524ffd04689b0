#include "tests/support/runs.hpp"

#include <algorithm>
#include <limits>

// Files with invalid contents: a run ends with a banner that names the file. It does not crash or
// hang, and does not allocate memory for invalid numbers.
namespace {

using namespace sample_files;
using namespace runs;

constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t least = std::numeric_limits<std::int32_t>::min();

// Two bricks, one above the other, a surface with walls, a fracture and a dual continuum.
Problem goodProblem() {
    const Grid grid{1, 1, 2, 2};
    Problem problem = brickProblem(grid);
    const Bytes walls = integerRecords({-1, 1, 2}) + integerRecord({0, -1, 0, 0}) +
                        integerRecord({13, 16, 15, 16, 13, 14, 15, 16}) +
                        integerRecord({0, 0, 0, 0});
    addSheetDomain(problem, grid, "olf", 12, walls, integerRecords({0, -1, 1}));
    addSheetDomain(problem, grid, "frac", 16, "", integerRecord({1, 2}) + realRecord({0.5}));
    addDual(problem, 12);
    problem["to.sat_pm.0001"] = resultFile("0.0", {Singles(12, 0.5F)});
    problem["to.v_pm.0001"] = resultFile("0.0", {Reals{1, 2}, Reals{1, 2}, Reals{1, 2}});
    problem["to.species"] = integerRecords({1, 1}) + textRecord("salt", 50) +
                            textRecord("clay", 50) + integerRecords({0, 0});
    problem["to.hmc"] =
        integerRecords({1, 1, 1, 0, 1, 1, 1}) + textRecord("rain", 80) + integerRecords({1, 1});
    return problem;
}

// Each file is cut at each word, and each word is replaced by each of these values. A cut file ends
// the run; with another value the run may also finish. A truncation includes elements although some
// of their nodes are not in the domain.
TEST(DamagedFiles, CutOrChangedAtAnyWord) {
    const Folder folder;
    Problem good = goodProblem();
    good["t.plot.control"] = "end\nwrite pm domain file\nend\nwrite frac domain file\nend\n"
                             "write olf domain file\ntruncate olf domain\n0 1\n0 1\n0 3\nend\n"
                             "write dual domain file\n";
    write(good);
    std::string report;
    for (const auto& [name, whole] : good) {
        if (!name.starts_with("to.")) continue;
        std::map<std::string, int> endings; // with the number of words and values
        for (std::size_t at = 0; at < whole.size(); at += 4) {
            SCOPED_TRACE(name + " " + std::to_string(at));
            put(name, whole.substr(0, at));
            expectFailure(runHere(), {name});
            for (const std::int32_t value : {0, -1, 3, 13, 1 << 24, most, least}) {
                put(name, Bytes(whole).replace(at, 4, bytesOf(Integers{value})));
                const Ran ran = runHere();
                std::string ending = endingOf(ran.errors);
                EXPECT_EQ(ran.status, ending.empty() ? 0 : 1) << value;
                EXPECT_THAT(ending, Not(HasSubstr("ALLOCATION"))) << value;
                std::ranges::replace(ending, '\n', ' ');
                ++endings[ending.empty() ? "finished" : ending];
            }
        }
        put(name, whole);
        for (const auto& [ending, times] : endings) // without results and names of species
            if (name.find(".000") == Bytes::npos && ending.find("Failed to") == Bytes::npos)
                report += name + ", " + std::to_string(times) + ": " + ending + "\n";
    }
    expectFile("damages.txt", report);
}

// Valid meshes with an invalid number of node sheets.
TEST(DamagedFiles, DivisionsByZero) {
    const std::string noNumbers = "no pm layer numbers\nno pm column numbers\n";
    const std::pair<std::int32_t, std::string> cases[] = {
        {0, ""}, // the number of sheets is derived from the nodes
        {1, ""},
        {1, "no pm layer numbers\n"},
        {1, noNumbers},
        {most, noNumbers},
        {4, "truncate pm domain by layer\n0 1\n0 1\n1 1\n"}};
    std::string report;
    for (const auto& [sheets, control] : cases) {
        const Folder folder;
        Problem problem = brickProblem({1, 1, 2, 1});
        patch(problem["to.coordinates_pm"], 2, 2, sheets);
        problem["t.plot.control"] = "end\nwrite pm domain file\n" + control;
        write(problem);
        report += std::to_string(sheets) + " sheets\n" + control + "  " +
                  endingOf(runHere().errors) + "\n";
    }
    expectFile("sheet_counts.txt", report);
}

} // namespace
