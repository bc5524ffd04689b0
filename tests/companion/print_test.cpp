#include "tests/companion/tool_runs.hpp"

#include "tests/support/data_set.hpp"

#include <cstring>

namespace {

using sample_files::get;
using sample_files::put;
using testing::HasSubstr;
using tool_runs::tool;

struct Print : tool_runs::ToolRun {
    // The data set with 4 bytes replaced.
    void putDamaged(const std::string& whole, std::size_t at, std::int32_t value) {
        std::string bytes = whole;
        std::memcpy(bytes.data() + at, &value, sizeof value);
        put("damaged.szplt", bytes);
    }
};

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

TEST_F(Print, EscapesNames) {
    std::string bytes = get(pm);
    const std::size_t at = bytes.find(std::string("H\0\0\0e\0\0\0a\0\0\0d", 13));
    bytes[at + 4] = '\x1b';
    put(pm, bytes);
    EXPECT_THAT(tool({"print", pm}).screen, HasSubstr("\"H\\x1bad\""));
}

// Each length, and each word of the headers and of the data with values that counts, types and
// shares must not have.
TEST_F(Print, DamagedDataSetsEndWithAMessage) {
    const std::string whole = get(pm);
    for (std::size_t length = 0; length < whole.size(); length += length < 2000 ? 4 : 512) {
        put("damaged.szplt", whole.substr(0, length));
        SCOPED_TRACE(length);
        runs::expectFailure(tool({"print", "damaged.szplt"}), {"damaged.szplt: byte "});
    }
    for (const std::int32_t value : {-2, 7, 0x7fffffff})
        for (std::size_t at = 0; at + 4 <= whole.size(); at += at < 2000 ? 4 : 52) {
            putDamaged(whole, at, value);
            SCOPED_TRACE(testing::Message() << at << ": " << value);
            const runs::Ran ran = tool({"print", "damaged.szplt"});
            if (ran.status != 0) runs::expectFailure(ran, {"damaged.szplt: byte "});
        }
}

} // namespace
