// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Filters/CAudioFilterGen.h"
#include "Audio/Filters/CAudioFilterParams.h"
#include "Audio/Filters/CFilterBank.h"
#include "Core/CObject.h"
#include "Core/CProcessState.h"
#include "Tests/Product/CProductRig.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <gtest/gtest.h>
#include <numbers>

namespace {

/// Of an impulse response, at a fraction of the rate.
double gainAt(const std::vector<double>& response, double frequency)
{
    std::complex<double> sum = 0.0;
    for (std::size_t n = 0; n < response.size(); ++n)
        sum += response[n] * std::polar(1.0, -2.0 * std::numbers::pi * frequency * static_cast<double>(n));
    return std::abs(sum);
}

TEST(TestResampling, HalfBandsReachTheAttenuationInTheirNames)
{
    std::string error;
    const render::CProductModule module(error);
    ASSERT_TRUE(module.isEntered()) << error;
    // The stop band begins half a transition above a quarter of the rate.
    for (const auto& [decibels, width] : {std::pair{212, 20},
                                          {186, 20},
                                          {159, 20},
                                          {133, 20},
                                          {106, 20},
                                          {80, 20},
                                          {53, 20},
                                          {225, 4},
                                          {171, 4},
                                          {116, 4},
                                          {62, 4}}) {
        const std::string name = "audio.flt.hbf" + std::to_string(decibels) + "t" + std::to_string(width);
        const qrb::CObject* found = qrb::processState().sharedObject->findObject(name.c_str());
        const auto* designer = dynamic_cast<const qrb::CAudioFilterGen*>(found);
        ASSERT_NE(designer, nullptr) << name;
        qrb::CAudioFilterStageList list;
        designer->design(list, 1.0, {}, nullptr);
        qrb::CFilterBank stage;
        stage.apply(list, 1.0);
        std::vector<double> response(4096, 0.0); // to rest
        response[0] = 1.0;
        double* const line[] = {response.data()};
        stage.run(line, line, response.size());
        const double edge = 0.25 + 0.5 / width;
        double highest = 0.0;
        for (double f = edge; f < 0.5; f += 1e-3)
            highest = std::max(highest, gainAt(response, f));
        for (const double gain : {gainAt(response, edge), highest})
            EXPECT_NEAR(20.0 * std::log10(gain), -decibels, 1.0) << name;
        EXPECT_NEAR(gainAt(response, 0.0), 1.0, 1e-14) << name;
    }
}

TEST(TestResampling, SinesComeBackThroughLinearPhaseFilters)
{
    constexpr std::size_t kFrames = 6000;
    for (const int mode : {2, 3, 4}) {
        for (const double frequency : {30.0, 1000.0, 15000.0, 19000.0}) {
            CProductRig rig({44100.0, 1, 1, 0, 1});
            rig.set("oversampling=" + std::to_string(mode)).set("lp-oversampling-enable=1");
            CChannels in(1, std::vector<double>(kFrames));
            for (std::size_t n = 0; n < kFrames; ++n)
                in[0][n] = std::sin(2.0 * std::numbers::pi * frequency / 44100.0 * static_cast<double>(n));
            const std::vector<double> out = rig.run(in, 512)[0];
            const auto delay = static_cast<std::size_t>(rig.latency());
            double error = 0.0;
            for (std::size_t n = kFrames / 2; n < kFrames; ++n)
                error = std::max(error, std::abs(out[n] - in[0][n - delay]));
            // At 19 kHz the soft filter loses a little.
            EXPECT_LE(error, frequency <= 15000.0 ? 1e-7 : mode == 2 ? 2e-7 : 1.2e-5) << frequency << " Hz, " << mode;
        }
    }
}

} // namespace
