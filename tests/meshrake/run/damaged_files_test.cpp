#include "tests/support/runs.hpp"

#include <limits>
#include <sstream>

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

// A new value of a payload word of a record. Words and records count from 0.
struct Damage {
    std::string file;
    int record, word;
    std::int32_t value;
};

// clang-format off
const Damage damages[] = {
    {"gen", 1, 0, -1},
    {"gen", 1, 0, 2}, // the record of titles is shorter
    {"gen", 3, 0, 10},
    {"species", 0, 0, -1},
    {"species", 1, 0, -2},
    {"hmc", 4, 0, 2},
    {"coordinates_pm", 0, 0, 14},
    {"coordinates_pm", 0, 0, 13},
    {"coordinates_pm", 2, 2, -1},
    {"elements_pm", 0, 0, -8},
    {"elements_pm", 0, 0, most},
    {"elements_pm", 2, 0, 13},
    {"elements_pm", 2, 3, -1},
    {"elements_pm", 2, 3, 0}, // the thickness needs the node
    {"elements_olf", 5, 0, 0}, // without walls the last record is not read
    {"elements_olf", 2, 0, least},
    {"elements_olf", 6, 0, least},
    {"elements_dual", 2, 1, 99},
    {"coordinates_olf", 0, 0, 3},
    {"coordinates_olf", 2, 0, 0},
    {"coordinates_olf", 3, 8, 17},
    {"coordinates_olf", 3, 8, least},
    {"coordinates_olf", 6, 0, -2},
    {"coordinates_olf", 6, 0, most},
    {"coordinates_olf", 8, 1, least}, // an invalid wall node does not replace the node
    {"elements_frac", 1, 0, 17}
};
// clang-format on

TEST(DamagedFiles, InvalidNumbers) {
    std::ostringstream report;
    for (const Damage& d : damages) {
        const Folder folder;
        Problem problem = goodProblem();
        patch(problem.at("to." + d.file), d.record, d.word, d.value);
        // A truncation includes elements although some of their nodes are not in the domain.
        problem["t.plot.control"] = "end\nwrite pm domain file\nend\nwrite frac domain file\nend\n"
                                    "write olf domain file\ntruncate olf domain\n0 1\n0 1\n0 3\n";
        write(problem);
        const Ran ran = runHere();
        report << d.file << " record " << d.record << " word " << d.word << " is " << d.value
               << "\n  " << endingOf(ran.errors) << "\n";
        EXPECT_THAT(get("to.meshrake.eco"), HasSubstr(ran.status == 0 ? "" : "to." + d.file));
    }
    expectFile("damages.txt", report.str());
}

// Each file is cut at each word, and each word is replaced by each of these values. A cut file ends
// the run; with another value the run may also finish.
TEST(DamagedFiles, CutOrChangedAtAnyWord) {
    const Folder folder;
    const Problem good = goodProblem();
    write(good);
    for (const auto& [name, whole] : good) {
        if (!name.starts_with("to.")) continue;
        for (std::size_t at = 0; at < whole.size(); at += 4) {
            SCOPED_TRACE(name + " " + std::to_string(at));
            put(name, whole.substr(0, at));
            expectFailure(runHere(), {name});
            for (const std::int32_t value : {0, -1, 3, 1 << 24, most, least}) {
                put(name, Bytes(whole).replace(at, 4, bytesOf(Integers{value})));
                const Ran ran = runHere();
                EXPECT_TRUE(ran.status == 0 || ran.status == 1) << value;
                EXPECT_THAT(ran.errors, HasSubstr(ran.status == 1 ? "HALTING EXECUTION" : ""));
                EXPECT_THAT(ran.errors, Not(HasSubstr("ALLOCATION"))) << value;
            }
        }
        put(name, whole);
    }
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
