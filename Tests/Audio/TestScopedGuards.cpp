// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CScopedAllocWatch.h"
#include "Audio/CScopedFloatMode.h"

#include <cfenv>
#include <gtest/gtest.h>
#include <limits>

namespace qrb {
namespace {

/// At run time and here, whatever the compiler would like.
double divide(double a, double b)
{
    const volatile double numerator = a;
    const volatile double denominator = b;
    const volatile double result = numerator / denominator;
    return result;
}

TEST(CScopedFloatMode, PinsRoundingAndDenormalsAndGivesTheHostItsModeBack)
{
    const double nearest = divide(1.0, 3.0);
    ASSERT_EQ(std::fesetround(FE_UPWARD), 0);
    const double upward = divide(1.0, 3.0);
    ASSERT_NE(upward, nearest);
    {
        const CScopedFloatMode mode;
        EXPECT_EQ(divide(1.0, 3.0), nearest);
        EXPECT_EQ(divide(std::numeric_limits<double>::min(), 2.0), 0.0);
    }
    EXPECT_EQ(divide(1.0, 3.0), upward);
    EXPECT_GT(divide(std::numeric_limits<double>::min(), 2.0), 0.0);
    std::fesetround(FE_TONEAREST);
}

TEST(CScopedAllocWatch, SeesAnAllocation)
{
    std::uint64_t count = 99;
    {
        const CScopedAllocWatch watch(count);
    }
    EXPECT_EQ(count, 0u);
    {
        const CScopedAllocWatch watch(count);
        CQrbMemAllocator::release(CQrbMemAllocator::allocate(40));
    }
    EXPECT_EQ(count, 1u);
}

} // namespace
} // namespace qrb
