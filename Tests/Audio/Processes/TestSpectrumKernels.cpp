// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/SpectrumKernels.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

namespace qrb {
namespace {

struct CRun {
    std::vector<double> first, firstMeans, next, nextMeans, magnitudes, alone, aloneMeans;
};

CRun runKind(const CSpectrumKernels& kernels, std::size_t kind)
{
    constexpr std::size_t kCount = 64;
    constexpr CSpectrumRates kRates{0.1, 0.19};
    std::mt19937 engine(7);
    const auto random = [&] { return static_cast<double>(engine()) / 2147483648.0 - 1.0; };
    CRun run;
    for (auto* list : {&run.first, &run.firstMeans, &run.next, &run.nextMeans, &run.alone, &run.aloneMeans})
        list->resize(kCount);
    run.magnitudes.resize(kCount);
    std::vector<double> terms(2 * kCount + 4);
    for (int frame = 0; frame < 5; ++frame) {
        for (double& term : terms)
            term = random();
        terms[60] = 1e70;
        terms[90] = 1e-70;
        kernels.first[kind](terms.data() + 2, kCount, kRates, {run.first.data(), run.firstMeans.data()},
                            run.magnitudes.data());
        kernels.first[kind](terms.data() + 2, kCount, kRates, {run.alone.data(), run.aloneMeans.data()}, nullptr);
        kernels.next[kind](run.magnitudes.data(), kCount, kRates, {run.next.data(), run.nextMeans.data()});
    }
    for (auto* list : {&run.first, &run.firstMeans, &run.next, &run.nextMeans, &run.magnitudes}) {
        EXPECT_TRUE(kernels.areFinite(list->data(), kCount));
        const std::vector<double> values = *list;
        kernels.read(values.data(), kCount, 0.7, list->data());
    }
    for (auto* list : {&run.alone, &run.aloneMeans}) {
        std::vector<double> values = *list;
        kernels.read(values.data(), kCount, 0.7, list->data());
        for (double& value : values)
            value *= value;
        std::vector<double> roots(kCount);
        kernels.readRoots(values.data(), kCount, 0.7, roots.data());
        for (std::size_t i = 0; i < kCount; ++i)
            EXPECT_DOUBLE_EQ(roots[i], std::abs((*list)[i]));
        values[kCount - 1] = std::numeric_limits<double>::infinity();
        EXPECT_FALSE(kernels.areFinite(values.data(), kCount));
    }
    return run;
}

bool isSame(const std::vector<double>& a, const std::vector<double>& b)
{
    return std::memcmp(a.data(), b.data(), a.size() * sizeof(double)) == 0;
}

TEST(SpectrumKernels, GiveTheSameBitsInAllWidthsAndTheSameBinsToEachSpectrum)
{
    for (std::size_t kind = 0; kind < kSpectrumKindCount; ++kind) {
        const CRun pairs = runKind(spectrumKernels(EVectorWidth::pairs), kind);
        EXPECT_TRUE(isSame(pairs.first, pairs.alone)) << kind;
        EXPECT_TRUE(isSame(pairs.firstMeans, pairs.aloneMeans)) << kind;
        for (std::size_t i = 0; i < pairs.first.size(); ++i)
            EXPECT_NEAR(pairs.next[i], pairs.first[i], 1e-15 * std::abs(pairs.first[i])) << kind << " " << i;
        if (!hasVectorWidth(EVectorWidth::quads))
            continue;
        const CRun quads = runKind(spectrumKernels(EVectorWidth::quads), kind);
        for (const auto part : {&CRun::first, &CRun::firstMeans, &CRun::next, &CRun::nextMeans, &CRun::magnitudes})
            EXPECT_TRUE(isSame(pairs.*part, quads.*part)) << kind;
    }
}

} // namespace
} // namespace qrb
