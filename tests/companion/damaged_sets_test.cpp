#include "tests/companion/tool_runs.hpp"

#include <algorithm>
#include <cstring>
#include <filesystem>

namespace {

using sample_files::get;

// Subcommands that read binary data sets; each reads other parts of them.
const std::vector<std::vector<std::string>> commandLines{
    {"print", "damaged.szplt"},
    {"xdmf", "damaged.szplt"},
    {"series", "damaged.szplt", "--variable", "Head", "--point", "0,0,0"},
    {"series", "damaged.szplt", "--variable", "Zone", "--point", "0,0,0"},
};

struct DamagedSets : tool_runs::ToolRun {
    // A new file; some file systems flush one that was emptied and written again.
    static void put(const std::string& bytes) {
        std::filesystem::remove("damaged.szplt");
        sample_files::put("damaged.szplt", bytes);
    }

    // Status 0 where the damage is in what the subcommand does not read, else a message.
    static void runAll(bool mustFail) {
        for (const auto& arguments : commandLines) {
            const runs::Ran ran = tool_runs::tool(arguments);
            if (ran.status == 0 && !mustFail) continue;
            SCOPED_TRACE(testing::PrintToString(arguments));
            runs::expectFailure(ran, {"meshrake-tool: damaged.szplt: "});
        }
    }
};

TEST_F(DamagedSets, CutAtAnyLength) {
    const std::string whole = get(pm);
    for (std::size_t length = 0; length < whole.size(); length += length < 1500 ? 12 : 700) {
        SCOPED_TRACE(length);
        put(whole.substr(0, length));
        runAll(true);
    }
}

// Zone 2 shares with zone 1; counts, locations and ranges of values must agree.
TEST_F(DamagedSets, PartsThatDisagree) {
    const std::string whole = get(pm);
    const auto nodes = sample_files::bytesOf(sample_files::Integers{0, 0, 8, 1}); // and elements
    const std::size_t counts = whole.find(nodes, whole.find(nodes) + 1) + 8;
    const auto elevations = sample_files::bytesOf(sample_files::Reals{0, 0, 0, 0, 1, 1, 1, 1});
    const std::size_t values = whole.find(elevations);
    const auto variables = data_set_file::read(pm).variables;
    const auto head = std::ranges::find(variables, "Head") - variables.begin();
    const std::size_t location =
        counts - 8 - 4 * (variables.size() - static_cast<std::size_t>(head));
    struct Case {
        std::size_t at;
        std::string bytes;
        std::size_t command; // of `commandLines`
        std::string errors;
    };
    const Case cases[] = {
        {counts, sample_files::bytesOf(sample_files::Integers{9}), 1, "shared values of another"},
        {counts + 4, sample_files::bytesOf(sample_files::Integers{2}), 1, "shared "},
        {location, sample_files::bytesOf(sample_files::Integers{1}), 2,
         "zone 2 has other locations"},
        {values, sample_files::bytesOf(sample_files::Reals{-1}), 0, "outside the range"},
        {values, sample_files::bytesOf(sample_files::Reals{2}), 0, "outside the range"},
    };
    for (const auto& [at, bytes, command, errors] : cases) {
        put(std::string(whole).replace(at, bytes.size(), bytes));
        runs::expectFailure(tool_runs::tool(commandLines[command]), {"damaged.szplt: ", errors});
    }
}

// The file has as many bytes as names of so many variables would have, but they are a hole.
TEST_F(DamagedSets, MoreVariablesThanAnyRunHas) {
    const std::string whole = get(pm);
    const std::size_t count = whole.find(sample_files::bytesOf(sample_files::Integers{'X', 0})) - 4;
    put(whole.substr(0, count) + sample_files::bytesOf(sample_files::Integers{0x7fffffff}));
    std::filesystem::resize_file("damaged.szplt", std::uintmax_t{9} << 30U);
    runs::expectFailure(tool_runs::tool(commandLines[0]),
                        {"damaged.szplt: byte ", "not a number of variables"});
}

// Words with values that counts, types, shares, nodes and characters must not have.
TEST_F(DamagedSets, ChangedWords) {
    const std::string whole = get(pm);
    const std::size_t data = whole.size() - 3000; // the headers end with padding before it
    for (const std::int32_t value : {-2, 0x7fffffff})
        for (std::size_t at = 0; at + 4 <= whole.size(); at += at < 1500 || at > data ? 8 : 1000) {
            SCOPED_TRACE(testing::Message() << at << ": " << value);
            std::string bytes = whole;
            std::memcpy(bytes.data() + at, &value, sizeof value);
            put(bytes);
            runAll(false);
        }
}

} // namespace
