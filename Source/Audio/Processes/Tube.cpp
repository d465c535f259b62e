// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/Tube.h"

#include <smmintrin.h>

#include <algorithm>

namespace qrb {

namespace {

namespace pairs {

#include "Audio/Processes/LanePairs.inl"

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
    runInPlaces<CTubeLine, FTubeKernel>(lines, width, pairs::kKernels, wideTubeKernels, place, count);
}

void runTubes(ETubeLoop loop, std::span<const CTubeLine> lines, std::size_t count)
{
    runTubes(loop, lines, count, widestVectors());
}

} // namespace qrb
