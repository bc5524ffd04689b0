#include "tests/support/data_set.hpp"
#include "tests/support/runs.hpp"

// A binary run reads arrays of a mebibyte and more while it writes their zone.
namespace {

using namespace sample_files;
using data_set_file::DataSet;

constexpr Grid grid{513, 256, 1, 3};
constexpr std::size_t nodes = 2 * 514 * 257, elements = 513 * 256;

template<class T>
std::vector<T> ramp(std::size_t count, double first) {
    std::vector<T> values(count);
    for (std::size_t i = 0; i < count; ++i)
        values[i] = static_cast<T>(first + 0.5 * static_cast<double>(i));
    return values;
}

// A file with a record for each element, as in the older format.
Bytes fileByElement(const std::string& text, const std::vector<Reals>& components) {
    Bytes file = textRecord(text, 80);
    for (std::size_t e = 0; e < elements; ++e) {
        Reals values;
        for (const Reals& component : components) values.push_back(component[e]);
        file += realRecord(values);
    }
    return file;
}

std::vector<double> valuesOf(const DataSet& set, std::size_t zone, const std::string& variable) {
    const auto found = std::ranges::find(set.variables, variable);
    const auto v = static_cast<std::size_t>(found - set.variables.begin());
    const std::int32_t share = set.zones[zone].shares[v];
    return set.zones[share > 0 ? static_cast<std::size_t>(share - 1) : zone].values.at(v);
}

class DeferredReading : public runs::ProblemRun {
protected:
    DeferredReading() {
        problem = brickProblem(grid);
        problem["t.plot.control"] = "tecplot binary mode\nend\nwrite pm domain file\nend\n";
        problem["to.sat_pm.0001"] = resultFile("0.0", {ramp<float>(nodes, 1)});
        problem["to.sat_pm.0003"] = resultFile("20.0", {ramp<float>(nodes, 3)});
        problem["to.ElemK_pm.0001"] = resultFile("0.0 1", tensor);
        problem["to.vwc_pm.0001"] = resultFile("0.0", {ramp<double>(nodes, 5)});
    }

    const std::vector<Reals> tensor{ramp<double>(elements, 7), ramp<double>(elements, 8),
                                    ramp<double>(elements, 9)};
};

TEST_F(DeferredReading, GivesTheValuesOfTheFiles) {
    const Reals heads(nodes, 0.5 + 0.25 * 2); // of the third output time
    for (const bool byElement : {false, true}) {
        if (byElement) problem["to.ElemK_pm.0001"] = fileByElement("0.0 1", tensor);
        ASSERT_EQ(run().status, 0);
        const DataSet set = data_set_file::read("to.pm.szplt");
        ASSERT_EQ(set.zones.size(), 3U);
        for (const std::size_t zone : {0U, 1U, 2U}) {
            SCOPED_TRACE(testing::Message() << "zone " << zone << ", " << byElement);
            EXPECT_EQ(valuesOf(set, zone, "Sat"), ramp<double>(nodes, zone == 2 ? 3 : 1));
            EXPECT_EQ(valuesOf(set, zone, "VWC"), ramp<double>(nodes, 5));
            EXPECT_EQ(valuesOf(set, zone, "Kyy"), tensor[1]);
            EXPECT_EQ(valuesOf(set, zone, "Kzz"), tensor[2]);
        }
        const Reals pressure = valuesOf(set, 2, "Pressure Head");
        EXPECT_EQ(valuesOf(set, 2, "Head"), heads);
        EXPECT_EQ(pressure.front(), heads.front());
        EXPECT_EQ(pressure.back(), heads.back() - 1);
    }
}

// Common-node domains take their values from the arrays of pm.
TEST_F(DeferredReading, KeepsArraysThatOthersUse) {
    patch(problem["to.coordinates_olf"], 1, 0, 0); // common-node
    for (const std::string pm : {"", "write pm domain file\nend\n"}) {
        ASSERT_EQ(run("tecplot binary mode\nend\n" + pm + "write olf domain file\nend\n").status,
                  0);
        const DataSet set = data_set_file::read("to.olf.szplt");
        ASSERT_EQ(set.zones.size(), 3U);
        const Reals top = ramp<double>(nodes, 3);
        EXPECT_EQ(valuesOf(set, 2, "Saturation"), Reals(top.begin() + nodes / 2, top.end()));
        EXPECT_EQ(valuesOf(set, 2, "Pressure Head"), Reals(nodes / 2, 0));
    }
}

TEST_F(DeferredReading, ReadsAFormatThatChanges) {
    std::vector<Reals> frictions;
    for (int t = 1; t <= 3; ++t) {
        frictions = {ramp<double>(elements, t), ramp<double>(elements, 10 * t)};
        problem["to.friction_olf.000" + std::to_string(t)] =
            t == 2 ? fileByElement("10.0", frictions) : resultFile("10.0", frictions);
    }
    ASSERT_EQ(run("tecplot binary mode\nend\nwrite olf domain file\nend\n").status, 0);
    const DataSet set = data_set_file::read("to.olf.szplt");
    ASSERT_EQ(set.zones.size(), 3U);
    for (const std::size_t zone : {0U, 1U, 2U})
        EXPECT_EQ(valuesOf(set, zone, "ny").front(), 10.0 * static_cast<double>(zone + 1)) << zone;
    EXPECT_EQ(valuesOf(set, 2, "nx"), frictions[0]);
}

// The first zone replaces the data set of an earlier run.
TEST_F(DeferredReading, KeepsTheEarlierDataSetIfTheFirstZoneHasADamagedFile) {
    problem["to.pm.szplt"] = "earlier";
    const Bytes whole = problem["to.ElemK_pm.0001"];
    for (const bool cut : {true, false}) {
        Bytes& file = problem["to.ElemK_pm.0001"] = whole;
        if (cut)
            file.resize(file.size() - 100);
        else
            file[88 + 4 + 8 * elements] ^= 1; // of the two lengths of the first record
        const runs::Ran ran = run();
        runs::expectFailure(ran, {"values from file to.ElemK_pm.0001"});
        EXPECT_TRUE(get("to.pm.szplt") == "earlier") << cut;
        EXPECT_THAT(ran.screen, runs::HasSubstr("Kzz"));
        EXPECT_THAT(ran.screen, runs::Not(runs::HasSubstr("SpStor")));
    }
}

TEST_F(DeferredReading, EndsWithinTheZoneOfADamagedFile) {
    problem["to.sat_pm.0003"].resize(500000);
    const runs::Ran ran = run();
    runs::expectFailure(ran, {"Error reading values from file to.sat_pm.0003"});
    EXPECT_EQ(data_set_file::read("to.pm.szplt").zones.size(), 2U);
}

// The text form reads all files of a zone before it begins the zone.
TEST_F(DeferredReading, TextHasCompleteZonesBeforeADamagedFile) {
    problem = brickProblem({1, 1, 1, 3});
    problem["to.sat_pm.0001"] = problem["to.sat_pm.0003"] = resultFile("0.0", {ramp<float>(8, 1)});
    problem["to.sat_pm.0003"].resize(100);
    runs::expectFailure(run(), {"Error reading values from file to.sat_pm.0003"});
    const data_set::Text text = data_set::parse(get("to.pm.dat"));
    EXPECT_EQ(text.fault, "");
    EXPECT_EQ(text.set.zones.size(), 2U);
}

} // namespace
