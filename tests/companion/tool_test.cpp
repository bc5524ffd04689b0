#include "tests/companion/made_set.hpp"
#include "tests/companion/tool_runs.hpp"

#include "companion/commands/commands.hpp"
#include "companion/screen/screen.hpp"

#include <cmath>

namespace {

using testing::HasSubstr;
using tool_runs::tool;

struct Tool : tool_runs::ToolRun {};

TEST_F(Tool, CommandLines) {
    struct Case {
        std::vector<std::string> arguments;
        int status;
        std::string screen, errors;
    };
    std::vector<Case> cases{
        {{}, 2, "", "A subcommand is required"},
        {{"--help"}, 0, "print", ""},
        {{"--version"}, 0, "meshrake-tool 1.", ""},
        {{"prnt", pm}, 2, "", "prnt"},
        {{"print"}, 2, "", "FILE is required"},
        {{"print", pm, olf}, 2, "", "to.olf.szplt"},
        {{"print", "--no\x1b[1m", pm}, 2, "", "--no\\x1b[1m"},
        {{"print", "no.szplt"}, 1, "", "meshrake-tool: no.szplt: File with the specified name"},
        {{"print", "no\n.szplt"}, 1, "", "meshrake-tool: no\\n.szplt: "},
        {{"print", "."}, 1, "", "meshrake-tool: .: "},
        {{"print", "t.plot.control"}, 1, "", "t.plot.control: byte 8: not a binary data set"},
    };
    for (const commands::Command& command : commands::all())
        for (const char* option : {"--help", "--version"})
            cases.push_back(
                {{command.name, option}, 0, option[2] == 'h' ? command.name : "1.", ""});
    for (const auto& [arguments, status, screen, errors] : cases) {
        SCOPED_TRACE(testing::PrintToString(arguments));
        const runs::Ran ran = tool(arguments);
        EXPECT_EQ(ran.status, status);
        EXPECT_THAT(ran.screen, HasSubstr(screen));
        EXPECT_EQ(ran.screen.empty(), status != 0);
        EXPECT_THAT(ran.errors, HasSubstr(errors));
        EXPECT_EQ(ran.errors.empty(), status == 0);
    }
}

TEST_F(Tool, ReportsAScreenThatCannotBeWritten) {
    static const auto failing = [](int descriptor, const void* from, std::size_t size) {
        if (descriptor == 1) return errno = ENOSPC, std::ptrdiff_t{-1};
        return runs::keepingTable().write(descriptor, from, size);
    };
    for (const std::vector<std::string>& arguments :
         std::vector<std::vector<std::string>>{{"--help"}, {"print", pm}}) {
        system_calls::table.write = failing;
        const runs::Ran ran = tool(arguments);
        system_calls::table = system_calls::systemTable();
        runs::expectFailure(ran, {"meshrake-tool: standard output: "});
    }
}

// As other programs do in a pipe to `head`.
TEST_F(Tool, EndsWithoutAMessageWhenItsReaderHasEnded) {
    made_set::put("long", {.elements = 20000}); // more than a pipe holds
    EXPECT_EQ(std::system(MESHRAKE_TOOL_PROGRAM " print long.szplt 2>errors | head -n 1 >line"), 0);
    EXPECT_EQ(sample_files::get("line"), "TITLE = \"made\"\n");
    EXPECT_EQ(sample_files::get("errors"), "");
}

TEST(Screen, TextsAndNumbers) {
    EXPECT_EQ(screen::printable("a\\ \xc3\xbc\xc2\xa0 \n\r\t\x1b\x7f\xc2\x9b\xc2"),
              "a\\ \xc3\xbc\xc2\xa0 \\n\\r\\t\\x1b\\x7f\\xc2\\x9b\xc2");
    EXPECT_EQ(screen::printable(std::string(1, '\0')), "\\x00");
    EXPECT_EQ(screen::printable("\xef\xbb\xbf"
                                "end\xef\xbb\xbe"),
              "\\xef\\xbb\\xbf"
              "end\xef\xbb\xbe");
    EXPECT_EQ(screen::numberText(0.1F) + screen::numberText(-NAN), "0.1NaN");
}

} // namespace
