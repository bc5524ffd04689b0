#include "tvncommon/diagnostics/error.hpp"

#include "tests/support/runs.hpp"
#include "tvncommon/io/file_units.hpp"
#include "tvncommon/io/io_layer.hpp"

namespace {

using namespace error;

class Banners : public runs::Files {
protected:
    // Returns the text that the call writes to the standard error stream, and how it ends.
    static std::string bannerOf(const std::function<void()>& call) {
        const runs::Ran ran = runs::keepStreams([&] {
            try {
                call();
            } catch (const RunEnded& ended) {
                return ended.status;
            }
            return 0;
        });
        return ran.errors + (ran.status == 0 ? "returns\n" : "ends the run\n");
    }
};

TEST_F(Banners, OfAllFunctions) {
    // clang-format off
    const std::function<void()> calls[] = {
        [] { fatalError("  two\nlines  "); }, [] { input_error("what"); },
        [] { warningMsg("what "); }, [] { fatalErrorStat(29, "what  "); },
        [] { input_error_stat(100, "what"); }, [] { warningMsgStat(59, "what"); },
        [] { checkFileOpen(29, "name  "); }, [] { checkFileWrite(38, "name"); },
        [] { check_alloc(41, "some array "); }, [] { check_alloc(100, "some array"); },
        [] { check_alloc(0, "some array"); }, [] { checkFileOpen(0, "name"); },
        [] { user_size_check(12, 11, "nodes "); }, [] { user_size_check(11, 11, "nodes"); },
        [] { unknownCommandError("Top ", "do that "); },
        [] { commandConflictError("this ", "that "); },
        [] { obsoleteCommandError(" "); }, [] { obsoleteCommandError("that "); }};
    // clang-format on
    std::string report;
    for (const auto& call : calls) {
        const std::string banner = bannerOf(call);
        report += banner;
        // A log file gets the same text. The end of a run closes its files.
        const int unit = file_units::getUnit();
        ASSERT_EQ(io_layer::openTextReplace(unit, "log", io_layer::Flush::inBlocks), io_layer::ok);
        setErrorLoggingFileUnit(unit);
        EXPECT_EQ(bannerOf(call), banner);
        EXPECT_TRUE(banner.starts_with(sample_files::get("log")));
        const bool ends = banner.ends_with("ends the run\n");
        EXPECT_EQ(io_layer::unitTaken(unit), !ends);
        EXPECT_TRUE(sample_files::get("log").size() > 40 || banner == "returns\n");
        error::reset();
        if (!ends) file_units::freeUnit(unit);
    }
    sample_files::expectFile("banners.txt", report);
}

TEST_F(Banners, OpenedFilesMustExist) {
    sample_files::put("existing", "text\n");
    int unit = 0;
    for (const auto open : {file_units::open_ascii_file, file_units::open_unformatted_file}) {
        EXPECT_THAT(bannerOf([&] { open(unit, "none"); }),
                    testing::HasSubstr("\nFile not found: none\n\n"));
        open(unit, "existing  "); // trailing blanks are not part of a name
        EXPECT_EQ(io_layer::pathOf(unit), "existing");
        file_units::freeUnit(unit);
    }
}

} // namespace
