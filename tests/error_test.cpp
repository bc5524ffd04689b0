#include "tvncommon/error.hpp"

#include "tests/sample_files.hpp"
#include "tvncommon/file_units.hpp"
#include "tvncommon/io_layer.hpp"

#include <gtest/gtest.h>

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
        bool ended = false;
        try {
            call();
        } catch (const RunEnded& end) {
            ended = true;
            EXPECT_EQ(end.status, 1);
        }
        EXPECT_EQ(ended, ends);
        return testing::internal::GetCapturedStderr();
    }

    sample_files::Folder folder;
};

TEST_F(Banners, StandToTheLetter) {
    const std::string fatal = "\n**************************************\n"
                              "*** FATAL ERROR, HALTING EXECUTION ***\n"
                              "**************************************\n\n";
    const std::string input = "\n**************************************\n"
                              "*** INPUT ERROR, HALTING EXECUTION ***\n"
                              "**************************************\n\n";
    const std::string warning = "\n*********************************\n"
                                "***      WARNING MESSAGE      ***\n"
                                "*********************************\n\n";
    const std::string allocation = "\n*******************************************\n"
                                   "*** ALLOCATION ERROR, HALTING EXECUTION ***\n"
                                   "*******************************************\n\n";
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
        {[] { fatalErrorStat(0, "what"); }, fatal + "what\nError number: 0\n\n"},
        {[] { input_error_stat(100, "what"); }, input + "what\nError number: 100\n\n"},
        {[] { input_error_stat(-1, "what"); },
         input + "what\nError detail: End-of-file encountered on read\nError number: -1\n\n"},
        {[] { warningMsgStat(59, "what"); },
         warning + "what\nError detail: Invalid data format during list-directed input\n"
                   "Error number: 59\n\n",
         false},
        {[] { checkFileOpen(29, "name  "); }, fatal + "Failed to open file: name" + notFound},
        {[] { checkFileOpen(9, "name"); },
         fatal + "Failed to open file: name\nError detail: Permission to access file denied\n"
                 "Error number: 9\n\n"},
        {[] { checkFileRead(39, "name"); },
         fatal + "Error reading file: name\nError detail: Error encountered during read statement\n"
                 "Error number: 39\n\n"},
        {[] { checkFileWrite(38, "name"); },
         fatal + "Error writing file: name\n"
                 "Error detail: Error encountered during write statement\nError number: 38\n\n"},
        {[] { check_alloc(41, "some array "); },
         allocation + "Allocation failed: some array\n"
                      "Error detail: Insufficient virtual memory\nError number: 41\n\n"},
        {[] { check_alloc(7, "some array"); },
         allocation + "Allocation failed: some array\nError number: 7\n\n"},
        {[] { checkFileOpen(0, "name"); }, "", false},
        {[] { checkFileRead(0, "name"); }, "", false},
        {[] { checkFileWrite(0, "name"); }, "", false},
        {[] { check_alloc(0, "name"); }, "", false},
    };
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

TEST_F(Banners, GoOnWhereTheLogCannotBeWritten) {
    const int unit = file_units::getUnit();
    ASSERT_EQ(io_layer::openTextReplace(unit, "/dev/full", io_layer::Flush::inBlocks),
              io_layer::ok);
    setErrorLoggingFileUnit(unit);
    const std::string banner = bannerOf([] { fatalError("what"); }, true);
    EXPECT_NE(banner.find("\nwhat\n"), std::string::npos);
}

} // namespace
