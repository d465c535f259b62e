// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/CRealFFT.h"
#include "Platform/CSystemThread.h"

#include <cmath>
#include <complex>
#include <gtest/gtest.h>
#include <numbers>
#include <random>
#include <vector>

namespace qrb::platform {
namespace {

std::vector<double> noise(std::size_t size)
{
    std::mt19937 generator(7);
    std::uniform_real_distribution<double> value(-1.0, 1.0);
    std::vector<double> samples(size);
    for (double& sample : samples)
        sample = value(generator);
    return samples;
}

/// The definition, term by term, in the packed order.
std::vector<double> slowTransform(const std::vector<double>& samples)
{
    const std::size_t size = samples.size();
    std::vector<double> packed;
    for (std::size_t k = 0; k <= size / 2; ++k) {
        std::complex<double> sum = 0.0;
        for (std::size_t n = 0; n < size; ++n) {
            const double turns = static_cast<double>(k * n % size) / static_cast<double>(size);
            sum += samples[n] * std::polar(1.0, -2.0 * std::numbers::pi * turns);
        }
        if (k == size / 2)
            packed.insert(packed.begin() + 1, sum.real());
        else if (k == 0)
            packed.push_back(sum.real());
        else
            packed.insert(packed.end(), {sum.real(), sum.imag()});
    }
    return packed;
}

TEST(RealFFT, PacksTheTransformWithDCAndNyquistFirst)
{
    for (const unsigned log2Size : {1u, 2u, 3u, 8u}) {
        CRealFFT fft(log2Size);
        const std::vector<double> samples = noise(fft.size());
        const std::vector<double> expected = slowTransform(samples);
        std::vector<double> packed(fft.size());
        fft.forward(samples.data(), packed.data());
        for (std::size_t i = 0; i < fft.size(); ++i)
            EXPECT_NEAR(packed[i], expected[i], 1.0e-12) << "size " << fft.size() << ", place " << i;
    }
}

TEST(RealFFT, InverseGivesTheSignalTimesItsLengthInEverySize)
{
    for (unsigned log2Size = CRealFFT::kMinLog2Size; log2Size <= CRealFFT::kMaxLog2Size; ++log2Size) {
        CRealFFT fft(log2Size);
        ASSERT_EQ(fft.size(), std::size_t{1} << log2Size);
        const std::vector<double> samples = noise(fft.size());
        std::vector<double> inPlace = samples;
        fft.forward(inPlace.data(), inPlace.data());
        fft.inverse(inPlace.data(), inPlace.data());
        const double scale = 1.0 / static_cast<double>(fft.size());
        double worst = 0.0;
        for (std::size_t i = 0; i < fft.size(); ++i)
            worst = std::max(worst, std::abs(inPlace[i] * scale - samples[i]));
        EXPECT_LT(worst, 1.0e-14 * log2Size) << fft.size();
    }
    EXPECT_EQ(CRealFFT(99).size(), 65536u);
}

TEST(RealFFT, GivesTheSameBitsOnEveryThreadAndAlignment)
{
    const std::vector<double> samples = noise(1024);
    std::vector<double> reference(1024);
    CRealFFT(10).forward(samples.data(), reference.data());
    std::vector<std::vector<double>> results(4, std::vector<double>(1025));
    std::vector<CSystemThread> threads(4);
    for (std::size_t i = 0; i < threads.size(); ++i) {
        const auto body = [&, i] {
            for (int round = 0; round < 20; ++round) {
                CRealFFT fft(10);
                fft.forward(samples.data(), results[i].data() + i % 2);
            }
        };
        ASSERT_EQ(threads[i].start("fft", body, EThreadPriority::normal), 0);
    }
    for (std::size_t i = 0; i < threads.size(); ++i) {
        threads[i].join();
        EXPECT_TRUE(std::equal(reference.begin(), reference.end(), results[i].begin() + static_cast<long>(i % 2)));
    }
}

} // namespace
} // namespace qrb::platform
