#include "tests/companion/made_set.hpp"
#include "tests/companion/tool_runs.hpp"

namespace {

using made_set::valueAt;
using sample_files::get;
using sample_files::put;
using testing::HasSubstr;
using tool_runs::tool;

// Node 6 is at 1, 0, 1; the centre of element 3 is at 2.5, 0.5, 0.5.
struct Series : tool_runs::ToolRun {
    Series() {
        made_set::put("s", {.variables = {"Head", "Kx", "a\"b", "Cy", "Head"},
                            .times = {0, 0.5, 1e7},
                            .elements = 3});
    }
};

TEST_F(Series, RowsOfOutputTimes) {
    struct Case {
        std::vector<std::string> arguments;
        std::string screen, errors{};
    };
    const Case cases[] = {
        {{"--variable", "Head", "--node", "6"},
         "Time,Head node 6\n0,0.625\n0.5,1.125\n1e+07,10000001\n"},
        {{"--variable", "Head (2)", "--point", "1,1,-9"},
         "Time,Head (2) at 1 1 -9 (node 7)\n0,4000.75\n0.5,4001.25\n1e+07,10004000.75\n"},
        {{"--variable", "Kx", "--node", "1", "--element", "2,3"},
         "Time,Kx element 2,Kx element 3\n0,1000.125,1000.25\n0.5,1000.625,1000.75\n"
         "1e+07,10001000.125,10001000.25\n"},
        {{"--variable", "Head", "--variable", "Cy", "--point", "-1,0.1,0.9", "--point=2.2,9,0"},
         "Time,Head at -1 0.1 0.9 (node 2),Head at 2.2 9 0 (node 11),Cy at -1 0.1 0.9 (element 1),"
         "Cy at 2.2 9 0 (element 3)\n"
         "0,0.125,1.25,3000,3000.25\n0.5,0.625,1.75,3000.5,3000.75\n"
         "1e+07,1e+07,10000001,10003000,10003000\n",
         "meshrake-tool: the point -1,0.1,0.9 is outside the mesh, 1.01 from node 2\n"
         "meshrake-tool: the point 2.2,9,0 is outside the mesh, 8 from node 11\n"
         "meshrake-tool: the point -1,0.1,0.9 is outside the mesh, 1.6 from element 1\n"
         "meshrake-tool: the point 2.2,9,0 is outside the mesh, 8.52 from element 3\n"},
        {{"--variable", "X", "--node", "16"}, "Time,X node 16\n0,3\n0.5,3\n1e+07,3\n"},
    };
    for (auto [arguments, screen, errors] : cases) {
        arguments.emplace_back("s.szplt");
        const runs::Ran ran = tool("series", arguments);
        EXPECT_EQ(ran.screen, screen) << testing::PrintToString(arguments);
        EXPECT_EQ(ran.errors, errors);
        EXPECT_EQ(ran.status, 0);
    }
}

// A triangle or a prism has nodes that are several of its corners. Here element 1 has two nodes.
TEST_F(Series, CentreOfAnElementWithRepeatedNodes) {
    std::string bytes = get("s.szplt");
    const std::size_t at = bytes.find(sample_files::bytesOf(sample_files::Integers{0, 4, 5, 1, 2}));
    put("s.szplt",
        bytes.replace(at, 32,
                      sample_files::bytesOf(sample_files::Integers{0, 0, 0, 0, 0, 0, 0, 7})));
    EXPECT_THAT(tool("series", {"s.szplt", "--variable", "Kx", "--point", "0.9,0.5,0.5"}).screen,
                HasSubstr("(element 1)"));
}

TEST_F(Series, Refused) {
    made_set::put("empty", {.times = {}});
    made_set::put("nodes", {.variables = {"Kx"}, .firstNode = 2});
    put("cut.szplt", get("s.szplt").substr(0, get("s.szplt").size() - 8));
    struct Case {
        std::vector<std::string> arguments;
        int status;
        std::string errors;
    };
    const Case cases[] = {
        {{"s.szplt", "--node", "1"}, 2, "--variable is required"},
        {{"s.szplt", "--variable", "Head"}, 2, "--node, --element or --point is required"},
        {{"s.szplt", "--variable", "Head", "--node", "0"},
         2,
         "--node: Value 0 not in range 1 to 2147483647"},
        {{"s.szplt", "--variable", "Head", "--node", "1-5"},
         2,
         "--node: Value 1-5 not in range 1 to "},
        {{"s.szplt", "--variable", "Head", "--point", "1,2"}, 2, "\"1,2\" is not a point"},
        {{"s.szplt", "--variable", "Head", "--point", "1,2,3,"}, 2, "is not a point"},
        {{"s.szplt", "--variable", "Head", "--point", "1,2,nan"}, 2, "is not a point"},
        {{"s.szplt", "--variable", "Haed", "--node", "1"},
         1,
         "s.szplt: no variable \"Haed\"; it has X, Y, Z, Head, Kx, a\"b, Cy, Head (2)\n"},
        {{"s.szplt", "--variable", "Head", "--element", "1"}, 1, "values of nodes; give --node"},
        {{"s.szplt", "--variable", "Kx", "--node", "1"}, 1, "values of elements; give --element"},
        {{"s.szplt", "--variable", "Head", "--node", "17"}, 1, "s.szplt: zone 1 has no node 17"},
        {{"s.szplt", "--variable", "Kx", "--element", "4"}, 1, "zone 1 has no element 4"},
        {{"cut.szplt", "--variable", "Head", "--node", "1"}, 1, "cut.szplt: byte "},
        {{"empty.szplt", "--variable", "Head", "--node", "1"}, 1, "empty.szplt: no complete zone"},
        {{"nodes.szplt", "--variable", "Kx", "--point", "0,0,0"}, 1, "element 2 has a node"},
    };
    for (const auto& [arguments, status, errors] : cases) {
        const runs::Ran ran = tool("series", arguments);
        EXPECT_EQ(ran.status, status) << testing::PrintToString(arguments);
        EXPECT_THAT(ran.errors, HasSubstr(errors));
        EXPECT_EQ(ran.screen, "");
    }
}

TEST_F(Series, UnitsQuotesAndNumbers) {
    made_set::put("digits", {.times = {0.1}}); // Head is a 32-bit real
    EXPECT_EQ(tool("series", {"digits.szplt", "--variable", "Head", "--node", "1"}).screen,
              "Time,Head node 1\n0.1,0.1\n");
    made_set::put("infinite", {.times = {1e300}});
    EXPECT_EQ(tool("series", {"infinite.szplt", "--variable", "Head", "--node", "1"}).screen,
              "Time,Head node 1\n1e+300,Infinity\n");
    const runs::Ran quoted = tool("series", {"s.szplt", "--variable", "a\"b", "--node", "1"});
    EXPECT_THAT(quoted.screen, testing::StartsWith("Time,\"a\"\"b node 1\"\n0,2000\n"));
    const runs::Ran units = tool("series", {pm, "--variable", "Head", "--node", "1"});
    EXPECT_THAT(units.screen, testing::StartsWith("Time (s),Head (m) node 1\n0,"));
}

// Besides the headers it reads 8 bytes for each output time, the coordinates only for points, and
// no byte twice.
TEST_F(Series, ReadsOnlyTheBytesItNeeds) {
    made_set::Shape shape{.variables = {"a", "b", "Head"}, .elements = 1000};
    for (int t = 1; t < 100; ++t) shape.times.push_back(t);
    made_set::put("long", shape);
    static std::size_t calls = 0, bytes = 0;
    const auto count = [](std::vector<std::string> arguments) {
        calls = bytes = 0;
        system_calls::table = runs::keepingTable();
        system_calls::table.readAt = [](int file, void* into, std::size_t size, std::int64_t at) {
            ++calls;
            bytes += size;
            return system_calls::systemTable().readAt(file, into, size, at);
        };
        arguments.emplace_back("long.szplt");
        EXPECT_EQ(tool("series", arguments).status, 0);
        system_calls::table = system_calls::systemTable();
        return std::pair(calls, bytes);
    };
    const auto [sharedCalls, sharedBytes] = count({"--variable", "X", "--node", "4"});
    const auto [ownCalls, ownBytes] = count({"--variable", "Head", "--node", "4"});
    EXPECT_EQ(ownCalls - sharedCalls, 99U);
    EXPECT_EQ(ownBytes - sharedBytes, 99U * 8);
    EXPECT_LT(sharedBytes, 150000U); // headers, of 4 MB
    const auto [pointCalls, pointBytes] = count({"--variable", "a", "--variable", "b", "--variable",
                                                 "Head", "--point", "1,0,0", "--point", "2,0,0"});
    EXPECT_EQ(pointCalls - sharedCalls, 3 + 2 * 300 - 1U);
    EXPECT_EQ(pointBytes - sharedBytes, 3 * 8 * 4004 + 2 * 100 * (4 + 8 + 8) - 8U);
}

} // namespace
