#include "tvncommon/diagnostics/warning_messages.hpp"

#include "tvncommon/diagnostics/error.hpp"

#include <gtest/gtest.h>

namespace {

using namespace warning_messages;

std::string shown(void (*call)()) {
    testing::internal::CaptureStderr();
    call();
    return testing::internal::GetCapturedStderr();
}

void raiseAll() {
    setCurrentCmd("some command  ");
    inputWarn("first ");
    clearCurrentCmd();
    genericWarn("second");
    deprecationWarn("old", "new ");
    deprecationWarn("older");
    addWarning("Type", " ", "last");
}

const std::string texts[] = {
    "Type: Input Warning\nIssuing command: some command\nMessage: first",
    "Type: Generic Warning\nMessage: second",
    "Type: Deprecation Warning\nIssuing command: old\nMessage: The command \"old\" has been "
    "deprecated and will be removed in a future release.\n         Please consider the "
    "command(s): \"new\"",
    "Type: Deprecation Warning\nIssuing command: older\nMessage: The command \"older\" has been "
    "deprecated and will be removed in a future release.",
    "Type: Type\nMessage: last"};

TEST(WarningMessages, AreGatheredShownOrDropped) {
    error::reset(); // of a log that a run before this test may have left
    reset();
    EXPECT_EQ(shown(printWarnings), "\nNo warnings were raised.\n\n");
    EXPECT_EQ(shown([] { genericWarn("one"); }), "");
    const std::string one = "Type: Generic Warning\nMessage: one\n\n";
    EXPECT_EQ(shown(printWarnings), "\nThere was 1 warning raised.\n\n1. " + one);
    EXPECT_EQ(shown(raiseAll), "");
    std::string queue = "\nThere were 6 warnings raised.\n\n1. " + one, banners;
    for (int i = 0; i < 5; ++i) {
        queue += std::to_string(i + 2) + ". " + texts[i] + "\n\n";
        const std::string stars(33, '*');
        banners.append("\n" + stars + "\n***      WARNING MESSAGE      ***\n" + stars + "\n\n")
            .append(texts[i] + "\n\n");
    }
    EXPECT_EQ(shown(printWarnings), queue);
    EXPECT_EQ(shown(printWarnings), queue);

    warnNow();
    EXPECT_EQ(shown(raiseAll), banners);
    EXPECT_EQ(shown(printWarnings), "");
    warnOff();
    EXPECT_EQ(shown(raiseAll), "");
    warnLater();
    EXPECT_EQ(shown(printWarnings), queue);
    reset();
}

} // namespace
