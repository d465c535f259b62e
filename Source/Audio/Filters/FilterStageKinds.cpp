// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Filters/FilterStageKinds.h"

#include "Audio/Filters/FilterKernels.h"
#include "Audio/Filters/FilterStates.h"

#include <iterator>

namespace qrb {

namespace {

template <std::size_t Count>
constexpr CDCDAWFilterKind halfBand(const char* initName, const char* runName)
{
    return {static_cast<EFilterKind>(Count),
            {initName, initHalfBand<Count>, 2, 1},
            {initName, initHalfBand<Count>, 2, 1},
            {runName, runHalfBand<Count>, 3, 3},
            halfBandStateSize(Count)};
}

template <EFilterKind Kind>
constexpr CDCDAWFilterKind firstOrder(const char* runName)
{
    return {Kind,
            {"DCDAW_fltlphp1i", initFirstOrder, 2, 1},
            {"DCDAW_fltlphp1u", updateFirstOrder, 2, 1},
            {runName, runFirstOrder<Kind>, 3, 3},
            104};
}

template <EFilterKind Shape>
constexpr CDCDAWFilterKind biquad(const char* runName)
{
    return {Shape,
            {"DCDAW_fltbiqi", initBiquad, 2, 1},
            {"DCDAW_fltbiqu", updateBiquad, 2, 1},
            {runName, runBiquad<Shape>, 3, 3},
            200};
}

/// By number.
constexpr CDCDAWFilterKind kKinds[] = {
    {},
    halfBand<1>("DCDAW_flthbf2i", "DCDAW_flthbf2"),
    halfBand<2>("DCDAW_flthbf4i", "DCDAW_flthbf4"),
    halfBand<3>("DCDAW_flthbf6i", "DCDAW_flthbf6"),
    halfBand<4>("DCDAW_flthbf8i", "DCDAW_flthbf8"),
    halfBand<5>("DCDAW_flthbf10i", "DCDAW_flthbf10"),
    halfBand<6>("DCDAW_flthbf12i", "DCDAW_flthbf12"),
    halfBand<7>("DCDAW_flthbf14i", "DCDAW_flthbf14"),
    halfBand<8>("DCDAW_flthbf16i", "DCDAW_flthbf16"),
    firstOrder<EFilterKind::lowPass1>("DCDAW_fltlp1"),
    firstOrder<EFilterKind::highPass1>("DCDAW_flthp1"),
    biquad<EFilterKind::biquad>("DCDAW_fltbiqcommon"),
    biquad<EFilterKind::biquadLowPass>("DCDAW_fltbiqlp"),
    biquad<EFilterKind::biquadHighPass>("DCDAW_fltbiqhp"),
    biquad<EFilterKind::biquadBandPass>("DCDAW_fltbiqbp"),
    biquad<EFilterKind::biquadNotch>("DCDAW_fltbiqnotch"),
    firstOrder<EFilterKind::highPass1Gain>("DCDAW_flthp1g"),
};

} // namespace

const CDCDAWFilterKind* filterKind(EFilterKind id)
{
    const auto place = static_cast<std::size_t>(id);
    return place > 0 && place < std::size(kKinds) ? &kKinds[place] : nullptr;
}

} // namespace qrb
