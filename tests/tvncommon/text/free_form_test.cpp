#include "tvncommon/text/free_form.hpp"

#include "tvncommon/io/io_layer.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <map>
#include <random>
#include <sstream>

namespace {

using namespace free_form;
using io_layer::endOfFile;
using io_layer::invalidData;
using namespace std::string_view_literals;
using Texts = std::vector<std::string>;

NextLine linesOf(Texts lines) {
    return [lines = std::move(lines), next = std::size_t{0}](std::string& line) mutable {
        if (next == lines.size()) return false;
        line = lines[next++];
        return true;
    };
}

double real(std::string_view text, int expectedStatus = 0) {
    double value = -77;
    EXPECT_EQ(readReal(text, value), expectedStatus) << text;
    return value;
}

TEST(FreeForm, RealsInAllSpellings) {
    const double inf = std::numeric_limits<double>::infinity();
    const std::string zeros(400, '0');
    const std::map<double, Texts> cases = {
        {1500, {"1500", " \t+1.5e3", "1500.", "1.5+3", "15D+02", ".15e004", "1500,2", "1500/2"}},
        {-1e20, {"-1.0d+20", "-1E20\r", "-1e20 text", "2*-1d20", "-100000000000000000000"}},
        {0,
         {"0", "1e-400", "0e99999999999", "1d-99999999999", "." + zeros + "1",
          zeros + zeros + ".1e-400"}},
        {10, {"." + zeros + "1e402", zeros + "10", "1" + zeros + "d-399"}},
        {4.9e-324, {"4.9e-324"}},
        {inf, {"INF", "+Infinity"}},
        {-77, {",", "/", " , 3", "3*", "/1"}}};
    for (const auto& [expected, texts] : cases)
        for (const std::string& text : texts) EXPECT_EQ(real(text), expected) << text;
    EXPECT_TRUE(std::isnan(real("-NaN")));
    EXPECT_TRUE(std::signbit(real("-1d-400")));
}

TEST(FreeForm, WhatIsNoNumberLeavesTheValue) {
    std::istringstream texts(
        "x 1x . 1.2.3 1e 1e5.0 --1 +-1 0x10 1e400 .001e+400 -1d9999999999 *3 0*3 1;2 inff "
        "-1*3 1*+* 2*3*4 '1' 99999999999*1 nan(1) \" \xff\xfe 1-");
    for (std::string text; texts >> text;) EXPECT_EQ(real(text, invalidData), -77);
    EXPECT_EQ(real("1\0"sv, invalidData), -77);
    for (const std::string_view text : {"", "   ", "\t\r\n"}) EXPECT_EQ(real(text, endOfFile), -77);
}

TEST(FreeForm, Integers) {
    const std::map<std::pair<int, std::int32_t>, Texts> cases = {
        {{0, 12}, {"012", "+12,13", "3*12", "12/x"}},
        {{0, std::numeric_limits<std::int32_t>::min()}, {"-2147483648"}},
        {{0, std::numeric_limits<std::int32_t>::max()}, {"2147483647"}},
        {{invalidData, -77}, {"2147483648", "-2147483649", "1.0", "1e2", "+-1", "R8", "1x"}},
        {{endOfFile, -77}, {"", " "}}};
    for (const auto& [expected, texts] : cases) {
        for (const std::string& text : texts) {
            std::int32_t value = -77;
            const int status = readInteger(text, value);
            EXPECT_EQ(std::pair(status, value), expected) << text;
        }
    }
}

// Just above half way between two floats, by less than a double can hold.
TEST(FreeForm, SinglePrecisionIsRoundedOnce) {
    float value = 0;
    EXPECT_EQ(readReal("1.00000005960464477539062500000001", value), 0);
    EXPECT_EQ(value, std::nextafter(1.0F, 2.0F));
}

TEST(FreeForm, ReadsBackWhatAnotherRouteHasWritten) {
    std::mt19937_64 bits(20240531);
    for (int i = 0; i < 20000; ++i) {
        double expected = 0;
        const std::uint64_t pattern = bits();
        std::memcpy(&expected, &pattern, sizeof expected);
        if (!std::isfinite(expected)) continue;
        std::array<char, 64> text{};
        std::snprintf(text.data(), text.size(), "%.*e", 16 + i % 9, expected);
        if (i % 2 == 1) *std::strchr(text.data(), 'e') = 'D';
        ASSERT_EQ(real(text.data()), expected) << text.data();
    }
}

TEST(FreeForm, ItemsRunOverLines) {
    struct Case {
        Texts lines;
        int status;
        std::array<double, 3> values;
    };
    const Case cases[] = {{{"1 2 3 4", "5"}, 0, {1, 2, 3}},
                          {{"", "1,", "  2", "", ",3 rest"}, 0, {1, 2, 3}},
                          {{"1,,3"}, 0, {1, -2, 3}},
                          {{"1,", ",3"}, 0, {1, -2, 3}},
                          {{"1/2 3", "2 3"}, 0, {1, -2, -3}},
                          {{"2*1.5", "3"}, 0, {1.5, 1.5, 3}},
                          {{"1000000*4"}, 0, {4, 4, 4}},
                          {{"2*,3"}, 0, {-1, -2, 3}},
                          {{"3*1.5"}, invalidData, {1.5, 1.5, -3}},
                          {{"1 x 3"}, invalidData, {1, -2, -3}},
                          {{"1 2", ""}, endOfFile, {1, 2, -3}},
                          {{}, endOfFile, {-1, -2, -3}}};
    for (const Case& c : cases) {
        double a = -1, b = -2;
        std::int32_t n = -3;
        const Item items[] = {&a, &b, &n};
        SCOPED_TRACE(c.lines.empty() ? "no line" : c.lines.front());
        EXPECT_EQ(readItems(linesOf(c.lines), items), c.status);
        EXPECT_EQ((std::array<double, 3>{a, b, static_cast<double>(n)}), c.values);
    }
    const NextLine lines = linesOf({"1 2 3", "4", "5 6"});
    std::array<double, 2> values{};
    EXPECT_EQ(readReals(lines, values), 0);
    EXPECT_EQ(readReals(lines, values), 0); // what was left of the first line is lost
    EXPECT_EQ(values, (std::array<double, 2>{4, 5}));
    EXPECT_EQ(readReals(lines, values), endOfFile);
}

TEST(FreeForm, Words) {
    const std::map<std::pair<int, std::string>, Texts> cases = {
        {{0, "dir/prob"}, {"  dir/prob rest", "dir/prob\r", "\tdir/prob,x", "'dir/prob'x"}},
        {{0, "it's my"}, {"'it''s my' prob", "\"it's my\""}},
        {{0, ""}, {"''"}},
        {{0, "old"}, {",x"}},
        {{invalidData, "old"}, {"'it''s", "'", "\"'"}},
        {{endOfFile, "old"}, {"", " \t"}}};
    for (const auto& [expected, lines] : cases) {
        for (const std::string& line : lines) {
            std::string word = "old";
            const int status = readWord(line, word);
            EXPECT_EQ(std::pair(status, word), expected) << line;
        }
    }
}

// Nothing is claimed but that the readers end in order.
TEST(FreeForm, SurvivesAnyBytes) {
    constexpr std::string_view alphabet = "019.+-eEdD*,/ \t\n'\"infaNt\0\xff;x"sv;
    std::mt19937 random(7);
    for (int i = 0; i < 50000; ++i) {
        std::string text(random() % 12, ' ');
        for (char& c : text) c = alphabet[random() % alphabet.size()];
        double a = 0, b = 0;
        std::int32_t n = 0;
        std::string word;
        const Item items[] = {&a, &n, &b};
        for (const int status : {readReal(text, a), readInteger(text, n), readWord(text, word),
                                 readItems(linesOf({text, text}), items)})
            ASSERT_TRUE(status == 0 || status == endOfFile || status == invalidData) << text;
    }
}

} // namespace
