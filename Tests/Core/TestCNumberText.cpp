// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CNumberText.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace qrb {
namespace {

double numberOf(const char* text)
{
    double value = -777.0;
    return parseNumber(text, value) ? value : std::nan("");
}

TEST(CNumberText, ReadsNumbersWithPointCommaAndExponent)
{
    EXPECT_EQ(numberOf("0.3"), 0.3);
    EXPECT_EQ(numberOf("-12,75"), -12.75);
    EXPECT_EQ(numberOf("+.5"), 0.5);
    EXPECT_EQ(numberOf("1e3"), 1000.0);
    EXPECT_EQ(numberOf("2.5E-2"), 0.025);
    EXPECT_EQ(numberOf("0e999999999999"), 0.0);
    EXPECT_EQ(numberOf("1e-999999999999"), 0.0);
    EXPECT_DOUBLE_EQ(numberOf("123456789e-310"), 123456789e-310);
    for (const char* bad :
         {"", "-", ".", "5.", "1.2.3", "1,2.3", "5.e3", "1e", "1e+", "e5", " 1", "1 ", "0x10", "nan", "1e999"}) {
        EXPECT_TRUE(std::isnan(numberOf(bad))) << bad;
    }
}

TEST(CNumberText, ReadsIntegersAndRefusesOverflow)
{
    const auto integerOf = [](const char* text) {
        std::int32_t value = -777;
        return parseInteger(text, value) ? value : -777;
    };
    EXPECT_EQ(integerOf("2147483647"), 2147483647);
    EXPECT_EQ(integerOf("-2147483648"), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(integerOf("0xfF"), 255);
    EXPECT_EQ(integerOf("-$10"), -16);
    EXPECT_EQ(integerOf("#FFFFFFFF"), -1);
    for (const char* bad : {"", "-", "0x", "#", "12a", "1.0", "+1", " 1", "2147483648", "-2147483649", "#100000000",
                            "99999999999999999999"}) {
        EXPECT_EQ(integerOf(bad), -777) << bad;
    }
}

TEST(CNumberText, WritesFixedDecimals)
{
    EXPECT_EQ(formatFixed(0.5, 0), "1");
    EXPECT_EQ(formatFixed(-2.5, 0), "-3");
    EXPECT_EQ(formatFixed(-0.04, 1), "0.0");
    EXPECT_EQ(formatFixed(-0.05, 1), "-0.1");
    EXPECT_EQ(formatFixed(1234.5, 3), "1234.500");
    EXPECT_EQ(formatFixed(0.007, 2), "0.01");
    EXPECT_EQ(formatFixed(-1e300, 0), "-9223372036854775808");
    for (int step = -3000; step <= 3000; ++step) {
        EXPECT_NEAR(numberOf(formatFixed(step / 97.0, 4).narrowData()), step / 97.0, 0.5000001e-4);
    }
}

TEST(CNumberText, RoundsHalvesAwayAndSaturates)
{
    EXPECT_EQ(roundHalfAway(2.5), 3);
    EXPECT_EQ(roundHalfAway(-2.5), -3);
    EXPECT_EQ(roundHalfAway(0.49999999999999994), 0);
    EXPECT_EQ(roundHalfAway(1e19), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(roundHalfAway(-INFINITY), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(roundHalfAway(NAN), 0);
    EXPECT_EQ(roundToInt(-3e9), std::numeric_limits<std::int32_t>::min());
}

TEST(CNumberText, PatternsGiveWhatPrintfGivesInTheNeutralLocale)
{
    for (const char* pattern : {"%0.1f", "%.0f dB", "%+8.2f|", "%-9.3e|", "%08.3f", "%g", "%G%%", "% .2f", "<%5.1f>"}) {
        for (const double value : {0.0, -0.26, 12.345, 1e20, -98765.4321, 1.5e-7}) {
            char expected[200];
            std::snprintf(expected, sizeof(expected), pattern, value);
            EXPECT_EQ(formatPattern(pattern, value), expected) << pattern;
        }
    }
    EXPECT_EQ(formatPattern("%+d st", 2.5), "+3 st");
    EXPECT_EQ(formatPattern("%04X", 255.0), "00FF");
    EXPECT_EQ(formatPattern("%s%n%", 1.0), "");
    EXPECT_EQ(formatPattern("%999999999.999999999f", 1.0).length(), 512U);
}

} // namespace
} // namespace qrb
