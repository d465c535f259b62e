// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/CDenormNoise.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace qrb {
namespace {

TEST(CDenormNoise, IsTheRecursionSampleBySampleHoweverItIsCut)
{
    std::vector<double> want(1000);
    std::uint32_t state = 4294967290u;
    double sum = 0.0;
    for (double& sample : want) {
        state = state * 30013u + 30011u;
        sample = (state & 0x800000u) != 0 ? 1e-11 : -1e-11;
        sum += sample;
    }
    EXPECT_LT(std::abs(sum), 1e-9) << "about as many up as down";

    for (const std::size_t cut : {1u, 3u, 4u, 7u, 64u, 1000u}) {
        CDenormNoise filling(4294967290u);
        CDenormNoise adding(4294967290u);
        std::vector<double> filled(want.size());
        std::vector<double> added(want.size(), 0.0);
        for (std::size_t i = 0; i < want.size(); i += cut) {
            const std::size_t count = std::min(cut, want.size() - i);
            filling.fill({&filled[i], count});
            adding.add({&added[i], count}, {&added[i], count});
        }
        for (std::size_t i = 0; i < want.size(); ++i) {
            ASSERT_NEAR(filled[i], want[i], 1e-20) << cut << " " << i;
            ASSERT_EQ(added[i], filled[i]) << cut << " " << i;
        }
    }
}

} // namespace
} // namespace qrb
