#include "tvncommon/text/number_formats.hpp"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace {

using Limits = std::numeric_limits<double>;

std::string wideReal(double value) {
    std::string field(26, '?');
    number_formats::writeWideReal(value, field.data());
    return field;
}

TEST(WideReal, Layout) {
    const std::vector<std::pair<double, const char*>> cases = {
        {0.0, "   0.0000000000000000     "},
        {-0.0, "  -0.0000000000000000     "},
        {12345678901234567.0, "   12345678901234568.     "},
        {Limits::denorm_min(), "  0.49406564584124654E-323"},
        {Limits::quiet_NaN(), "                       NaN"},
        {-Limits::infinity(), "                 -Infinity"},
        {Limits::infinity(), "                  Infinity"},
        // The rounded value decides the notation.
        {std::nextafter(1e17, 0), "   99999999999999984.     "},
        {1e17, "  0.10000000000000000E+018"},
        // Below the power of ten by less than half a unit: rounded up to the next decade.
        {1e-305, "  0.10000000000000000E-304"},
        // Ties are rounded to the even digit.
        {65.0000152587890625, "   65.000015258789062     "},
        {0x1p-25, "  0.29802322387695312E-007"},
        // These differ from a tie by less than 2^-62 of the last digit, on both sides.
        {std::bit_cast<double>(0x4d63de005bd620df), "  0.65383113159393268E+065"},
        {std::bit_cast<double>(0x4d73de005bd620df), "  0.13076622631878654E+066"},
        {std::bit_cast<double>(0x0d17c0747bd76fa1), "  0.13588129002659584E-244"}};
    for (const auto& [value, field] : cases) EXPECT_EQ(wideReal(value), field);
    EXPECT_EQ(number_formats::wideRealText(-0.5), "-0.50000000000000000");
}

TEST(Rows, Integers) {
    const std::vector<std::int32_t> values = {0,           -1,        99999999,   100000000,
                                              2147483647,  -99999999, -100000000, -999999999,
                                              -1000000000, 10203040,  -7,         5};
    const std::vector<std::string> fields = {
        "         0", "        -1", "  99999999", " 100000000", "2147483647", " -99999999",
        "-100000000", "-999999999", "**********", "  10203040", "        -7", "         5"};
    std::string rows;
    for (std::size_t i = 0; i < fields.size(); ++i)
        rows += " " + fields[i] + (i % 5 == 4 || i == 11 ? "\n" : "");
    std::string text(rows.size() + 8, '#');
    char* end = number_formats::writeIntegerRows(values.data(), 2, text.data());
    EXPECT_EQ(end, text.data() + 2 * 56);
    end = number_formats::writeIntegerTail(values.data() + 10, 2, end);
    EXPECT_EQ(end, text.data() + rows.size());
    EXPECT_EQ(text, rows + "########");
}

TEST(Fields, Exponent) {
    const std::vector<std::tuple<double, int, int, const char*>> cases = {
        {1e20, 12, 5, " 0.10000E+21"},
        {-0.0, 12, 5, "-0.00000E+00"},
        {999996.0, 12, 5, " 0.10000E+07"},
        {0.000999985, 12, 5, " 0.99998E-03"},
        {9.999999e98, 12, 5, " 0.10000+100"},
        {-1e-101, 12, 5, "-0.10000-100"},
        {-123.5, 11, 5, "-.12350E+03"},
        {123.5, 10, 5, ".12350E+03"},
        {2.5, 8, 1, " 0.2E+01"},
        {1234.5678901, 20, 8, "      0.12345679E+04"},
        {-Limits::infinity(), 12, 5, "   -Infinity"},
        {-Limits::infinity(), 8, 1, "    -Inf"},
        {Limits::infinity(), 2, 1, "**"}};
    for (const auto& [value, width, digits, field] : cases)
        EXPECT_EQ(number_formats::exponentField(value, width, digits), field) << value;
}

} // namespace
