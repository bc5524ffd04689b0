#include "tvncommon/text/free_form.hpp"

#include "tests/support/sample_files.hpp"
#include "tvncommon/io/io_layer.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <random>
#include <sstream>

namespace {

using namespace free_form;
using io_layer::endOfFile;
using io_layer::invalidData;
using Texts = std::vector<std::string>;

NextLine linesOf(Texts lines) {
    return [lines = std::move(lines), next = std::size_t{0}](std::string& line) mutable {
        if (next == lines.size()) return false;
        line = lines[next++];
        return true;
    };
}

// Returns the texts between the bars. Z is replaced by 400 zeros and @ by a NUL.
std::vector<std::string> textsOf(const std::string& list) {
    std::vector<std::string> texts(1);
    for (const char c : list)
        if (c == '|')
            texts.emplace_back();
        else
            texts.back() += c == 'Z' ? std::string(400, '0') : std::string(1, c == '@' ? '\0' : c);
    return texts;
}

// Status and value of each text, read as a real, an integer or a word. The value is -77 or "old" if
// it is not changed.
TEST(FreeForm, Items) {
    std::ostringstream report;
    const auto add = [&](const std::string& text, int status, const auto& value) {
        std::string shown = testing::PrintToString(text);
        if (shown.size() > 80) shown.replace(9, shown.size() - 20, "...");
        report << shown << ": " << status << " " << value << "\n";
    };
    for (const std::string& text : textsOf(
             "1500| \t+1.5e3|1500.|1.5+3|15D+02|.15e004|1500,2|1500/2|-1.0d+20|-1E20\r|-1e20 text|"
             "2*-1d20|-100000000000000000000|0|1e-400|0e99999999999|1d-99999999999|.Z1|ZZ.1e-400|"
             ".Z1e402|Z10|1Zd-399|4.9e-324|INF|+Infinity|,|/| , 3|3*|/1|-NaN|-1d-400|x|1x|.|1.2.3|"
             "1e|1e5.0|--1|+-1|0x10|1e400|.001e+400|-1d9999999999|*3|0*3|1;2|inff|-1*3|1*+*|2*3*4|"
             "'1'|99999999999*1|nan(1)|\"|\xff\xfe|1-|1@||   |\t\r\n")) {
        double value = -77;
        const int status = readReal(text, value);
        add(text, status, value);
    }
    for (const std::string& text : textsOf("012|+12,13|3*12|12/x|-2147483648|2147483647|2147483648|"
                                           "-2147483649|1.0|1e2|+-1|R8|1x|| ")) {
        std::int32_t value = -77;
        const int status = readInteger(text, value);
        add(text, status, value);
    }
    for (const std::string& text :
         textsOf("  dir/prob rest|dir/prob\r|\tdir/prob,x|'dir/prob'x|'it''s my' prob|\"it's my\"|"
                 "''|,x|'it''s|'|\"'|| \t")) {
        std::string word = "old";
        const int status = readWord(text, word);
        add(text, status, word);
    }
    sample_files::expectFile("free_form.txt", report.str());
}

// The text is above the middle between two floats by less than the precision of a double.
TEST(FreeForm, SinglePrecisionIsRoundedOnce) {
    float value = 0;
    EXPECT_EQ(readReal("1.00000005960464477539062500000001", value), 0);
    EXPECT_EQ(value, std::nextafter(1.0F, 2.0F));
}

TEST(FreeForm, ReadsTheNumbersOfSnprintf) {
    std::mt19937_64 bits(20240531);
    for (int i = 0; i < 20000; ++i) {
        double expected = 0;
        const std::uint64_t pattern = bits();
        std::memcpy(&expected, &pattern, sizeof expected);
        if (!std::isfinite(expected)) continue;
        std::array<char, 64> text{};
        std::snprintf(text.data(), text.size(), "%.*e", 16 + i % 9, expected);
        if (i % 2 == 1) *std::strchr(text.data(), 'e') = 'D';
        double value = 0;
        ASSERT_EQ(readReal(text.data(), value), 0);
        ASSERT_EQ(value, expected) << text.data();
    }
}

TEST(FreeForm, ItemsContinueOnTheNextLines) {
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
    EXPECT_EQ(readReals(lines, values), 0); // the rest of the first line is skipped
    EXPECT_EQ(values, (std::array<double, 2>{4, 5}));
    EXPECT_EQ(readReals(lines, values), endOfFile);
}

} // namespace
