#include "tvncommon/diagnostics/warning_messages.hpp"

#include "tests/support/runs.hpp"
#include "tvncommon/diagnostics/error.hpp"

namespace {

using namespace warning_messages;

std::string shown(void (*call)()) {
    return runs::keepStreams([=] { return call(), 0; }).errors;
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

TEST(WarningMessages, AreCollectedShownOrDropped) {
    error::reset(); // an earlier test may have set a logging unit
    reset();
    std::string report = shown(printWarnings);
    report += shown([] { genericWarn("one"); }) + shown(printWarnings) + shown(raiseAll);
    const std::string queue = shown(printWarnings);
    EXPECT_EQ(shown(printWarnings), queue);
    warnNow();
    report += queue + shown(raiseAll);
    EXPECT_EQ(shown(printWarnings), "");
    warnOff();
    EXPECT_EQ(shown(raiseAll), "");
    warnLater();
    EXPECT_EQ(shown(printWarnings), queue);
    reset();
    sample_files::expectFile("warnings.txt", report);
}

} // namespace
