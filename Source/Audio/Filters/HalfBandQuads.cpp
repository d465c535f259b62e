// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Filters/HalfBandKernels.h"
#include "Audio/Filters/HalfBandState.h"

#include <immintrin.h>

namespace qrb {

namespace {

// Only what stands in this region is compiled for the wider processor. Functions that other files share must not be: the
// linker keeps one copy of them for all processors.
#pragma GCC push_options
#pragma GCC target("avx2")

namespace quads {

constexpr std::size_t kWordLines = 2;
using Lanes = __m256d;

[[gnu::always_inline]] inline Lanes gather(const double* const* lines, std::size_t n)
{
    return _mm256_insertf128_pd(_mm256_castpd128_pd256(_mm_loadu_pd(lines[0] + 2 * n)), _mm_loadu_pd(lines[1] + 2 * n),
                                1);
}

[[gnu::always_inline]] inline void scatter(Lanes word, double* const* lines, std::size_t n)
{
    _mm_storeu_pd(lines[0] + 2 * n, _mm256_castpd256_pd128(word));
    _mm_storeu_pd(lines[1] + 2 * n, _mm256_extractf128_pd(word, 1));
}

[[gnu::always_inline]] inline Lanes gatherTwice(const double* const* lines, std::size_t n)
{
    return _mm256_blend_pd(_mm256_broadcast_sd(lines[0] + n), _mm256_broadcast_sd(lines[1] + n), 0b1100);
}

[[gnu::always_inline]] inline void scatterFirst(Lanes word, double* const* lines, std::size_t n)
{
    _mm_storel_pd(lines[0] + n, _mm256_castpd256_pd128(word));
    _mm_storel_pd(lines[1] + n, _mm256_extractf128_pd(word, 1));
}

[[gnu::always_inline]] inline Lanes swapped(Lanes word)
{
    return _mm256_permute_pd(word, 0b0101);
}

#include "Audio/Filters/HalfBandLoops.inl"

} // namespace quads

#pragma GCC pop_options

} // namespace

const CHalfBandKernels& quadHalfBandKernels()
{
    return quads::kKernels;
}

} // namespace qrb
