#include "tvncommon/diagnostics/error.hpp"

#include "tests/support/sample_files.hpp"
#include "tvncommon/io/file_units.hpp"
#include "tvncommon/io/io_layer.hpp"

#include <gmock/gmock.h>

#include <functional>

namespace {

using namespace error;

class Banners : public testing::Test {
protected:
    ~Banners() override {
        error::reset();
        io_layer::reset();
    }

    // What the call writes on the standard error stream; it ends the run or returns.
    static std::string bannerOf(const std::function<void()>& call, bool ends) {
        testing::internal::CaptureStderr();
        if (ends)
            EXPECT_THROW(call(), RunEnded);
        else
            call();
        return testing::internal::GetCapturedStderr();
    }

    sample_files::Folder folder;
};

TEST_F(Banners, StandToTheLetter) {
    const auto frame = [](const std::string& stars, const std::string& words) {
        return "\n" + stars + "\n" + words + "\n" + stars + "\n\n";
    };
    const std::string stars(33, '*');
    const std::string fatal = frame(stars + "*****", "*** FATAL ERROR, HALTING EXECUTION ***");
    const std::string input = frame(stars + "*****", "*** INPUT ERROR, HALTING EXECUTION ***");
    const std::string warning = frame(stars, "***      WARNING MESSAGE      ***");
    const std::string allocation =
        frame(stars + "**********", "*** ALLOCATION ERROR, HALTING EXECUTION ***");
    const std::string notFound =
        "\nError detail: File with the specified name could not be found\nError number: 29\n\n";
    struct Case {
        std::function<void()> call;
        std::string banner;
        bool ends = true;
    };
    const Case cases[] = {
        {[] { fatalError("  two\nlines  "); }, fatal + "  two\nlines\n\n"},
        {[] { input_error("what"); }, input + "what\n\n"},
        {[] { warningMsg("what "); }, warning + "what\n\n", false},
        {[] { fatalErrorStat(29, "what  "); }, fatal + "what" + notFound},
        {[] { input_error_stat(100, "what"); }, input + "what\nError number: 100\n\n"},
        {[] { warningMsgStat(59, "what"); },
         warning + "what\nError detail: Invalid data format during list-directed input\n"
                   "Error number: 59\n\n",
         false},
        {[] { checkFileOpen(29, "name  "); }, fatal + "Failed to open file: name" + notFound},
        {[] { checkFileWrite(38, "name"); },
         fatal + "Error writing file: name\n"
                 "Error detail: Error encountered during write statement\nError number: 38\n\n"},
        {[] { check_alloc(41, "some array "); },
         allocation + "Allocation failed: some array\n"
                      "Error detail: Insufficient virtual memory\nError number: 41\n\n"},
        {[] { check_alloc(100, "some array"); },
         allocation + "Allocation failed: some array\nError number: 100\n\n"},
        {[] { check_alloc(0, "some array"); }, "", false},
        {[] { checkFileOpen(0, "name"); }, "", false},
        {[] { user_size_check(12, 11, "nodes "); },
         frame(std::string(45, '*'), "*** DIMENSIONING ERROR, HALTING EXECUTION ***") +
             " Pre-processor request exceeds default array size\n\n nodes\n"
             "   Default value:   11\n   Requested value: 12\n\n"
             " Increase the default value in file array_sizes.default\n\n"},
        {[] { user_size_check(11, 11, "nodes"); }, "", false},
        {[] { unknownCommandError("Top ", "do that "); },
         input + "Top: Unrecognized instruction.\nInstruction: do that\n\n"},
        {[] { commandConflictError("this ", "that "); },
         input + "Command conflict: \"this\" \"that\"\n\n"},
        {[] { obsoleteCommandError(" "); },
         input + "This command is obsolete and no longer supported.\n"
                 "Please remove this command and rerun skiv.\n\n"},
        {[] { obsoleteCommandError("that "); },
         input + "This command is obsolete and no longer supported.\n"
                 "Please use this command instead: that\n\n"}};
    for (const Case& c : cases) {
        // Before there is a log, and after: then it holds the same.
        EXPECT_EQ(bannerOf(c.call, c.ends), c.banner);
        const int unit = file_units::getUnit();
        ASSERT_EQ(io_layer::openTextReplace(unit, "log", io_layer::Flush::inBlocks), io_layer::ok);
        setErrorLoggingFileUnit(unit);
        EXPECT_EQ(bannerOf(c.call, c.ends), c.banner);
        EXPECT_EQ(sample_files::get("log"), c.banner);
        // The end of a run closes its files.
        EXPECT_EQ(io_layer::unitTaken(unit), !c.ends);
        error::reset();
        if (!c.ends) file_units::freeUnit(unit);
    }
}

TEST_F(Banners, FilesOpenedByFormMustExist) {
    sample_files::put("there", "text\n");
    int unit = 0;
    for (const auto open : {file_units::open_ascii_file, file_units::open_unformatted_file}) {
        EXPECT_THAT(bannerOf([&] { open(unit, "none"); }, true),
                    testing::HasSubstr("\nFile not found: none\n\n"));
        open(unit, "there  "); // trailing blanks are no part of a name
        EXPECT_EQ(io_layer::pathOf(unit), "there");
        file_units::freeUnit(unit);
    }
}

} // namespace
