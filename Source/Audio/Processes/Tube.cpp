// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/Tube.h"

#include "Audio/Processes/LanePlaces.h"

#include <smmintrin.h>

#include <algorithm>

namespace qrb {

namespace {

namespace pairs {

constexpr std::size_t kLanes = 2;
using Lanes = double __attribute__((vector_size(16)));

[[gnu::always_inline]] inline Lanes all(double x)
{
    return _mm_set1_pd(x);
}

[[gnu::always_inline]] inline Lanes magnitude(Lanes x)
{
    return _mm_andnot_pd(all(-0.0), x);
}

[[gnu::always_inline]] inline Lanes withSignOf(Lanes x, Lanes sign)
{
    return _mm_or_pd(x, _mm_and_pd(all(-0.0), sign));
}

template <typename Mask>
[[gnu::always_inline]] inline bool isAny(Mask mask)
{
    return _mm_movemask_pd(reinterpret_cast<Lanes>(mask)) != 0;
}

#include "Audio/Processes/TubeLoops.inl"

Lanes at(const CTubeTerm& term, Lanes morph)
{
    return CLaneTerm{all(term.middle), all(term.span)}.at(morph);
}

} // namespace pairs

} // namespace

CTubeState restOfTube(const CTube& tube, bool isBlockedByFeedback)
{
    using namespace pairs;
    // In the loop's own arithmetic, so that silence stays silent to the last bit. In front of the curve the blocker takes
    // the curve's centre away, behind it what the curve makes of that.
    const Lanes morph = morphOf(all(tube.morphBias));
    const Lanes centre = at(tube.centre, morph);
    const Lanes rest = isBlockedByFeedback ? centre / at(tube.gain, morph)
                                           : shapeOf(centre, at(tube.knee, morph), at(tube.reach, morph));
    return {rest[0], 0.0, 0.0, 0.0, 0.0, 0.0};
}

void runTubes(ETubeLoop loop, std::span<const CTubeLine> lines, std::size_t count, EVectorWidth width)
{
    const auto place = static_cast<std::size_t>(loop);
    runInPlaces(
        lines, width, pairs::kKernels[place], [&] { return quadTubeKernels()[place]; }, count);
}

void runTubes(ETubeLoop loop, std::span<const CTubeLine> lines, std::size_t count)
{
    runTubes(loop, lines, count, widestVectors());
}

} // namespace qrb
