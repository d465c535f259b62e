// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/SpectrumKernels.h"

#include <immintrin.h>

namespace qrb {

namespace {

// Only what stands in this region is compiled for the wider processor. Functions that other files share must not be: the
// linker keeps one copy of them for all processors.
#pragma GCC push_options
#pragma GCC target("avx2")

namespace quads {

#include "Audio/Processes/LaneQuads.inl"

[[gnu::always_inline]] inline Lanes load(const double* at)
{
    return _mm256_loadu_pd(at);
}

[[gnu::always_inline]] inline void store(double* at, Lanes lanes)
{
    _mm256_storeu_pd(at, lanes);
}

[[gnu::always_inline]] inline Lanes sumTerms(Lanes a, Lanes b)
{
    return _mm256_unpacklo_pd(a, b) + _mm256_unpackhi_pd(a, b); // of terms 0, 2, 1, 3
}

[[gnu::always_inline]] inline Lanes ordered(Lanes lanes)
{
    return _mm256_permute4x64_pd(lanes, 0b11011000);
}

#include "Audio/Processes/SpectrumLoops.inl"

} // namespace quads

#pragma GCC pop_options

} // namespace

const CSpectrumKernels& quadSpectrumKernels()
{
    return quads::kKernels;
}

} // namespace qrb
