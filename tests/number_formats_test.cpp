#include "tvncommon/number_formats.hpp"

#include "tests/wide_real_reference.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace {

using Limits = std::numeric_limits<double>;

std::string wideReal(double value) {
    std::string field(26, '?');
    number_formats::writeWideReal(value, field.data());
    return field;
}

struct WideRealCase {
    double value;
    const char* field;
};

TEST(WideReal, Layout) {
    const std::vector<WideRealCase> cases = {
        {0.0, "   0.0000000000000000     "},
        {-0.0, "  -0.0000000000000000     "},
        {12.5, "   12.500000000000000     "},
        {0.76287199999999999, "  0.76287199999999999     "},
        {-0.22826800000000000, " -0.22826800000000000     "},
        {-2.6125200000000000, "  -2.6125200000000000     "},
        {12345678901234567.0, "   12345678901234568.     "},
        {-1234567890123456.7, "  -1234567890123456.8     "},
        {0.015602100000000001, "  0.15602100000000001E-001"},
        {-1e300, " -0.10000000000000001E+301"},
        {Limits::max(), "  0.17976931348623157E+309"},
        {Limits::min(), "  0.22250738585072014E-307"},
        {Limits::denorm_min(), "  0.49406564584124654E-323"},
        {-9.9999461011147596e-41, " -0.99999461011147596E-040"},
        {Limits::quiet_NaN(), "                       NaN"},
        {-Limits::quiet_NaN(), "                       NaN"},
        {Limits::infinity(), "                  Infinity"},
        {-Limits::infinity(), "                 -Infinity"},
    };
    for (const WideRealCase& c : cases) {
        EXPECT_EQ(wideReal(c.value), c.field);
        const std::string field = c.field;
        const std::size_t begin = field.find_first_not_of(' ');
        EXPECT_EQ(number_formats::wideRealText(c.value),
                  field.substr(begin, field.find_last_not_of(' ') + 1 - begin));
    }
}

TEST(WideReal, FormFollowsTheRoundedValue) {
    const std::vector<WideRealCase> cases = {
        {0.1, "  0.10000000000000001     "},
        {std::nextafter(0.1, 0), "  0.99999999999999992E-001"},
        {std::nextafter(1.0, 0), "  0.99999999999999989     "},
        {std::nextafter(1e17, 0), "   99999999999999984.     "},
        {1e17, "  0.10000000000000000E+018"},
        {1e16, "   10000000000000000.     "},
        {1e23, "  0.99999999999999992E+023"},
        // Below the power of ten by less than half a unit: the digits carry into the next decade.
        {1e-305, "  0.10000000000000000E-304"},
    };
    for (const WideRealCase& c : cases) EXPECT_EQ(wideReal(c.value), c.field);
}

TEST(WideReal, TiesGoToTheEvenDigit) {
    const std::vector<WideRealCase> cases = {
        {65.0000152587890625, "   65.000015258789062     "},
        {65.0000457763671875, "   65.000045776367188     "},
        {0x1p-25, "  0.29802322387695312E-007"},
        // These miss a tie by less than 2^-62 of the last digit, on either side.
        {std::bit_cast<double>(0x4d63de005bd620df), "  0.65383113159393268E+065"},
        {std::bit_cast<double>(0x4d73de005bd620df), "  0.13076622631878654E+066"},
        {std::bit_cast<double>(0x0d17c0747bd76fa1), "  0.13588129002659584E-244"},
    };
    for (const WideRealCase& c : cases) EXPECT_EQ(wideReal(c.value), c.field);
}

bool sameAsReference(double value) {
    std::array<char, 26> ours;
    std::array<char, 26> reference;
    number_formats::writeWideReal(value, ours.data());
    wide_real_reference::write(value, reference.data());
    if (ours == reference) return true;
    ADD_FAILURE() << std::string(ours.data(), 26) << "\n" << std::string(reference.data(), 26);
    return false;
}

TEST(WideReal, SameAsStandardLibrary) {
    std::mt19937_64 random(7);
    for (int i = 0; i < 3000000; ++i) {
        const double any = std::bit_cast<double>(random());
        ASSERT_TRUE(!std::isfinite(any) || sameAsReference(any));
    }
    std::uniform_real_distribution<double> exponent(-2, 18);
    for (int i = 0; i < 1000000; ++i) {
        const double usual = std::pow(10.0, exponent(random));
        ASSERT_TRUE(sameAsReference(usual));
        ASSERT_TRUE(sameAsReference(-static_cast<float>(usual)));
    }
}

TEST(WideReal, SameAsStandardLibraryAroundPowers) {
    std::vector<double> powers;
    for (int n = -1074; n < 1024; ++n) powers.push_back(std::ldexp(1.0, n));
    for (int n = -323; n <= 308; ++n)
        powers.push_back(std::strtod(("1e" + std::to_string(n)).c_str(), nullptr));
    for (const double power : powers) {
        const auto bits = std::bit_cast<std::uint64_t>(power);
        for (std::uint64_t near = bits - std::min<std::uint64_t>(bits, 20); near < bits + 20;
             ++near) {
            ASSERT_TRUE(sameAsReference(std::bit_cast<double>(near)));
        }
    }
}

TEST(Rows, FullRowsAndTail) {
    const std::array<float, 12> singles = {0.1F, -0.0F, 300.00003F, 1e10F, 3.4e38F,     1e-45F,
                                           0.5F, 1.0F,  -1e-10F,    2.0F,  16777216.0F, 7.0F};
    const std::vector<double> doubles(singles.begin(), singles.end());
    std::string expected;
    for (std::size_t i = 0; i < doubles.size(); ++i) {
        expected += wideReal(doubles[i]);
        if (i % 5 == 4 || i == 11) expected += '\n';
    }
    ASSERT_EQ(expected.size(), 2 * 131 + 53);
    EXPECT_EQ(expected.substr(0, 26), "  0.10000000149011612     ");

    // The guard behind the text has to stay: the buffer may end there.
    std::string text(expected.size() + 8, '#');
    char* end = number_formats::writeRealRows(doubles.data(), 2, text.data());
    EXPECT_EQ(text.substr(2 * 131), std::string(53 + 8, '#'));
    end = number_formats::writeRealTail(doubles.data() + 10, 2, end);
    EXPECT_EQ(end, text.data() + expected.size());
    EXPECT_EQ(text, expected + "########");

    std::string fromSingles(expected.size() + 8, '#');
    end = number_formats::writeRealRows(singles.data(), 2, fromSingles.data());
    number_formats::writeRealTail(singles.data() + 10, 2, end);
    EXPECT_EQ(fromSingles, text);
}

TEST(Rows, ManySingles) {
    std::vector<float> singles(37 * 5);
    for (std::size_t i = 0; i < singles.size(); ++i) singles[i] = 0.37F * static_cast<float>(i);
    const std::vector<double> doubles(singles.begin(), singles.end());
    for (const std::int64_t rows : {0, 1, 15, 16, 17, 37}) {
        std::string narrow(37 * 131 + 8, '#');
        std::string wide = narrow;
        EXPECT_EQ(number_formats::writeRealRows(singles.data(), rows, narrow.data()),
                  narrow.data() + rows * 131);
        number_formats::writeRealRows(doubles.data(), rows, wide.data());
        EXPECT_EQ(narrow, wide);
    }
}

TEST(Rows, Integers) {
    const std::vector<std::int32_t> values = {0,           -1,        99999999,   100000000,
                                              2147483647,  -99999999, -100000000, -999999999,
                                              -1000000000, 10203040,  -7,         5};
    const std::vector<std::string> fields = {
        "         0", "        -1", "  99999999", " 100000000", "2147483647", " -99999999",
        "-100000000", "-999999999", "**********", "  10203040", "        -7", "         5"};
    std::string rows;
    std::string connectivity;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        rows += " " + fields[i] + (i % 5 == 4 || i == 11 ? "\n" : "");
        connectivity += fields[i] + " " + (i % 4 == 3 ? "\n" : "");
    }
    std::string text(rows.size() + 8, '#');
    char* end = number_formats::writeIntegerRows(values.data(), 2, text.data());
    EXPECT_EQ(end, text.data() + 2 * 56);
    end = number_formats::writeIntegerTail(values.data() + 10, 2, end);
    EXPECT_EQ(end, text.data() + rows.size());
    EXPECT_EQ(text, rows + "########");

    text.assign(connectivity.size() + 8, '#');
    end = number_formats::writeConnectivityRows(values.data(), 3, 4, text.data());
    EXPECT_EQ(end, text.data() + connectivity.size());
    EXPECT_EQ(text, connectivity + "########");
}

TEST(Fields, Exponent) {
    struct Case {
        double value;
        int width;
        int digits;
        const char* field;
    };
    const std::vector<Case> cases = {
        {1e20, 12, 5, " 0.10000E+21"},
        {-1e20, 12, 5, "-0.10000E+21"},
        {0.0, 12, 5, " 0.00000E+00"},
        {-0.0, 12, 5, "-0.00000E+00"},
        {999996.0, 12, 5, " 0.10000E+07"},
        {0.000999985, 12, 5, " 0.99998E-03"},
        {1e100, 12, 5, " 0.10000+101"},
        {9.999999e98, 12, 5, " 0.10000+100"},
        {1e-100, 12, 5, " 0.10000E-99"},
        {-1e-101, 12, 5, "-0.10000-100"},
        {-123.5, 11, 5, "-.12350E+03"},
        {123.5, 11, 5, "0.12350E+03"},
        {123.5, 10, 5, ".12350E+03"},
        {-123.5, 10, 5, "**********"},
        {2.5, 8, 1, " 0.2E+01"},
        {1234.5678901, 20, 8, "      0.12345679E+04"},
        {Limits::quiet_NaN(), 12, 5, "         NaN"},
        {-Limits::infinity(), 12, 5, "   -Infinity"},
        {-Limits::infinity(), 8, 1, "    -Inf"},
        {Limits::infinity(), 2, 1, "**"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(number_formats::exponentField(c.value, c.width, c.digits), c.field) << c.value;
    }
}

TEST(Fields, Integer) {
    EXPECT_EQ(number_formats::integerField(42, 5), "   42");
    EXPECT_EQ(number_formats::integerField(-42, 3), "-42");
    EXPECT_EQ(number_formats::integerField(-42, 2), "**");
    EXPECT_EQ(number_formats::integerField(std::numeric_limits<std::int64_t>::min(), 20),
              "-9223372036854775808");
}

} // namespace
