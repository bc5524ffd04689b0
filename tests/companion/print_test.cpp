#include "tests/companion/made_set.hpp"
#include "tests/companion/tool_runs.hpp"

#include "tests/support/data_set.hpp"

namespace {

using sample_files::get;
using sample_files::put;
using testing::HasSubstr;
using tool_runs::tool;

struct Print : tool_runs::ToolRun {};

TEST_F(Print, LinesOfATextDataSet) {
    for (const std::string& file : {pm, olf}) {
        const runs::Ran printed = tool({"print", file});
        EXPECT_EQ(printed.status, 0) << printed.errors;
        const data_set::Text text =
            data_set::parse(printed.screen.substr(0, printed.screen.rfind("# ")));
        EXPECT_EQ(text.fault, "");
        EXPECT_EQ(data_set::contentsOf(text.set), data_set::contentsOf(data_set_file::read(file)));
        const runs::Ran headers = tool({"print", "--headers", file});
        EXPECT_THAT(headers.screen, testing::Not(HasSubstr("# Head\n")));
        EXPECT_THAT(headers.screen, HasSubstr("ZONE T=\""));
    }
}

TEST_F(Print, EscapesNamesAndNamesNumbers) {
    std::string bytes = get(pm);
    const std::size_t at = bytes.find(std::string("H\0\0\0e\0\0\0a\0\0\0d", 13));
    bytes[at + 4] = '\x1b';
    put(pm, bytes);
    EXPECT_THAT(tool({"print", pm}).screen, HasSubstr("\"H\\x1bad\""));
    made_set::put("infinite", {.times = {-1e300}});
    EXPECT_THAT(tool({"print", "infinite.szplt"}).screen, HasSubstr("\n-Infinity -Infinity"));
}

} // namespace
