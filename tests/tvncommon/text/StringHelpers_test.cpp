#include "tvncommon/text/StringHelpers.hpp"

#include "tests/support/runs.hpp"
#include "tvncommon/diagnostics/ArrayHelpers.hpp"
#include "tvncommon/text/utils.hpp"

#include <cstdlib>
#include <map>
#include <time.h>

namespace {

using namespace sample_files;
using namespace StringHelpers;

TEST(StringHelpers, PositionsAndPadding) {
    EXPECT_EQ(findFirstOf("1.5 msg", " "), 4U);
    EXPECT_EQ(findFirstOf("a,b,c", ",", 4), 4U);
    EXPECT_EQ(findFirstOf("abc   ", " "), 4U); // the trimmed length plus 1
    EXPECT_EQ(findFirstNotOf("  1.5 ", " "), 3U);
    for (const int start : {0, -1, -2147483647}) {
        EXPECT_EQ(findFirstOf("1.5 msg", " ", start), 4U);
        EXPECT_EQ(findFirstNotOf("  1.5 ", " ", start), 3U);
    }
    EXPECT_FALSE(equalPadded("end\t", "end"));
    std::string text = "No [PM] \xC3\x84@Z{z";
    lcase(text);
    EXPECT_EQ(text, "no [pm] \xC3\x84@z{z");
}

TEST(StringHelpers, NumbersAndTexts) {
    const std::map<std::pair<std::int32_t, std::string>, std::string> cases = {
        {{-2147483647 - 1, ""}, "-2147483648"},
        {{-42, " ( i 6.4 ) "}, "-0042"},
        {{-42, "(I0.3)"}, "-042"},
        {{12345, "(I3)"}, "***"},
        {{0, "(I0.0)"}, ""}};
    int iostat = -7;
    for (const auto& [given, expected] : cases) {
        EXPECT_EQ(toString_i4(given.first, given.second, &iostat), expected) << given.second;
        EXPECT_EQ(iostat, 0);
    }
    EXPECT_EQ(toString_i4(7), "7");
    float value = 0;
    str2r4("2.5", value, &iostat);
    EXPECT_EQ(std::pair(value, iostat), std::pair(2.5F, 0));
    std::string rest = "a,,b", token;
    EXPECT_TRUE(chomp(rest, ",", false, token));
    EXPECT_EQ(std::pair(token, rest), std::pair(std::string("a"), std::string(",b")));
    for (const char* format : {"(F8.3)", "(I3.4)", "(I-1)", "(I5", "(I)", "(I5x2)", "(I5.x)",
                               "(I5.2x)", "(I257)", "(I9999999999)"}) {
        EXPECT_EQ(toString_i4(1, format, &iostat), "");
        EXPECT_EQ(iostat, 38) << format;
        EXPECT_THAT(runs::endingOf([&] { toString_i4(1, format); }), testing::HasSubstr(format));
    }
}

TEST(ArrayHelpers, PushbackGrowsByHalf) {
    Integers a, capacities;
    std::int32_t count = 4; // ignored for an empty array
    for (std::int32_t i = 0; i < 19; ++i) {
        ArrayHelpers::pushback(i, count, a);
        ASSERT_EQ(count, i + 1);
        ASSERT_EQ(a[static_cast<std::size_t>(i)], i);
        const auto capacity = static_cast<std::int32_t>(a.size());
        if (capacities.empty() || capacities.back() != capacity) capacities.push_back(capacity);
    }
    EXPECT_EQ(capacities, (Integers{1, 2, 3, 5, 8, 12, 18, 27}));
    Texts texts{"a text too long for the record of a string"};
    ArrayHelpers::pushback(texts[0], count = 1, texts); // an entry of the array itself
    EXPECT_EQ(texts[1], texts[0]);
}

TEST(ArrayHelpers, ArraysOfTheSameSizeKeepTheirEntriesWithoutFill) {
    Integers a{1, 2};
    ArrayHelpers::allocate(2, a);
    EXPECT_EQ(a, (Integers{1, 2}));
    ArrayHelpers::allocate(2, a, 7);
    EXPECT_EQ(a, (Integers{7, 7}));
    ArrayHelpers::allocate(-1, a);
    EXPECT_TRUE(a.empty());
}

TEST(ArrayHelpers, FailedAllocationsNameTheArray) {
    constexpr std::int64_t tooMany = std::int64_t{1} << 61;
    Integers i4;
    Singles r4;
    std::vector<double> r8;
    Texts texts;
    const std::function<void()> calls[] = {
        [&] { ArrayHelpers::allocate(tooMany, i4); },
        [&] { ArrayHelpers::resize(tooMany, i4); },
        [&] { ArrayHelpers::allocate(tooMany, r4); },
        [&] { ArrayHelpers::resize(tooMany, r8); },
        [&] { ArrayHelpers::resize(tooMany, texts); },
        [&] { ArrayHelpers::resize(tooMany, texts, "x", "of mine"); },
        [&] { ArrayHelpers::allocateArray(i4, tooMany, "of yours"); }};
    std::string report;
    for (const auto& call : calls) report += runs::endingOf(call) + "\n";
    expectFile("failed_allocations.txt", report);
}

TEST(Utils, WidthsAboveTheMaximumEndTheRun) {
    EXPECT_EQ(utils::zeroPaddedIntString(7, 256), std::string(255, '0') + "7");
    EXPECT_EQ(runs::endingOf([] { utils::zeroPaddedIntString(7, 257); }),
              "FATAL: Zero padded integer string conversion failed.");
}

TEST(Utils, TimestampIsLocalWithItsOffset) {
    const char* const given = std::getenv("TZ");
    const std::string before = given ? given : "";
    const std::map<std::string, std::pair<const char*, time_t>> zones = {
        {"UTC0", {"Z", 0}}, {"XXX-05:45", {"+05:45", 20700}}, {"YYY3:30", {"-03:30", -12600}}};
    for (const auto& [name, expected] : zones) {
        setenv("TZ", name.c_str(), 1);
        const time_t earliest = time(nullptr);
        const std::string text = utils::timestampUTC();
        tm local{};
        const char* const end = strptime(text.c_str(), "%Y-%m-%dT%H:%M:%S", &local);
        EXPECT_STREQ(end, expected.first) << text;
        const time_t shown = timegm(&local) - expected.second;
        EXPECT_TRUE(earliest <= shown && shown <= time(nullptr)) << text;
    }
    given ? setenv("TZ", before.c_str(), 1) : unsetenv("TZ");
    tzset();
}

} // namespace
