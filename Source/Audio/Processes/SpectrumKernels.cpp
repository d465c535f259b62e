// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/SpectrumKernels.h"

#include <emmintrin.h>

namespace qrb {

namespace {

namespace pairs {

#include "Audio/Processes/LanePairs.inl"

[[gnu::always_inline]] inline Lanes load(const double* at)
{
    return _mm_loadu_pd(at);
}

[[gnu::always_inline]] inline void store(double* at, Lanes lanes)
{
    _mm_storeu_pd(at, lanes);
}

[[gnu::always_inline]] inline Lanes sumTerms(Lanes a, Lanes b)
{
    return _mm_unpacklo_pd(a, b) + _mm_unpackhi_pd(a, b);
}

[[gnu::always_inline]] inline Lanes ordered(Lanes lanes)
{
    return lanes;
}

#include "Audio/Processes/SpectrumLoops.inl"

} // namespace pairs

} // namespace

const CSpectrumKernels& spectrumKernels(EVectorWidth width)
{
    return width == EVectorWidth::quads ? quadSpectrumKernels() : pairs::kKernels;
}

const CSpectrumKernels& spectrumKernels()
{
    static const CSpectrumKernels& best = spectrumKernels(widestVectors());
    return best;
}

} // namespace qrb
