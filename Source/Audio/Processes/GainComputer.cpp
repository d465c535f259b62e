// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/GainComputer.h"

#include "Audio/Processes/GainComputerQuads.h"

#include <emmintrin.h>

#include <cmath>
#include <cstdint>
#include <numbers>

namespace qrb {

namespace {

namespace plain {

constexpr std::size_t kLanes = 1;
using Lanes = double;
using Ints = std::uint64_t;

[[gnu::always_inline]] inline Lanes rootOf(Lanes x)
{
    return std::sqrt(x);
}

[[gnu::always_inline]] inline bool isNoneAbove(Lanes a, Lanes b)
{
    return a <= b;
}

#include "Audio/Processes/LaneMath.inl"

} // namespace plain

namespace pairs {

constexpr std::size_t kLanes = 2;
using Lanes = double __attribute__((vector_size(16)));
using Ints = std::uint64_t __attribute__((vector_size(16)));

[[gnu::always_inline]] inline Lanes rootOf(Lanes x)
{
    return _mm_sqrt_pd(x);
}

[[gnu::always_inline]] inline bool isNoneAbove(Lanes a, Lanes b)
{
    return _mm_movemask_pd(_mm_cmple_pd(a, b)) == 3;
}

#include "Audio/Processes/LaneMath.inl"

} // namespace pairs

} // namespace

CGainCurve makeGainCurve(double ratio, double knee)
{
    // A slope of 0 would have no arc, a slope below -1 would turn louder into softer.
    constexpr double kUnity = 0.9999;
    constexpr double kInfinite = 0.002;
    CGainCurve curve;
    curve.slope = ratio > kUnity ? -0.0001 : ratio > kInfinite ? ratio - 1.0 : -1.0;
    curve.ratioBack = 1.0 + curve.slope;
    curve.kneeStart = -0.5 * knee;
    const double theta = (std::numbers::pi - std::atan(-curve.slope)) * 0.5;
    curve.arcCentre = curve.kneeStart * std::tan(theta);
    curve.kneeEnd = curve.kneeStart - curve.arcCentre * std::sin(2.0 * theta);
    curve.arcRadius2 = curve.arcCentre * curve.arcCentre;
    return curve;
}

double gainDecibels(const CGainCurve& curve, double over)
{
    if (over <= curve.kneeStart)
        return 0.0;
    if (over >= curve.kneeEnd)
        return over * curve.slope;
    const double along = over - curve.kneeStart;
    return curve.arcCentre + std::sqrt(curve.arcRadius2 - along * along);
}

const CGainKernels& gainKernels(EVectorWidth width)
{
    switch (width) {
    case EVectorWidth::plain:
        return plain::kKernels;
    case EVectorWidth::pairs:
        return pairs::kKernels;
    case EVectorWidth::quads:
        break;
    }
    return quadGainKernels();
}

const CGainKernels& gainKernels()
{
    return gainKernels(widestVectors());
}

} // namespace qrb
