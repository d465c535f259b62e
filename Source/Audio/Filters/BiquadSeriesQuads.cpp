// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Filters/BiquadSeriesKernels.h"

#include <immintrin.h>

namespace qrb {

namespace {

// Only what stands in this region is compiled for the wider processor. Functions that other files share must not be: the
// linker keeps one copy of them for all processors.
#pragma GCC push_options
#pragma GCC target("avx2")

namespace quads {

constexpr std::size_t kLanes = 4;
using Lanes = __m256d;

[[gnu::always_inline]] inline Lanes loadLanes(const double* at)
{
    return _mm256_loadu_pd(at);
}
[[gnu::always_inline]] inline void storeLanes(Lanes word, double* at)
{
    _mm256_storeu_pd(at, word);
}

template <std::size_t Lines>
struct LineLoops;

/// Two sections a word.
template <>
struct LineLoops<2> {
    [[gnu::always_inline]] static inline Lanes enter(const double* const* in, std::size_t n, Lanes word)
    {
        const __m128d pair = _mm_loadh_pd(_mm_load_sd(in[0] + n), in[1] + n);
        return _mm256_insertf128_pd(_mm256_castpd128_pd256(pair), _mm256_castpd256_pd128(word), 1);
    }
    [[gnu::always_inline]] static inline Lanes follow(Lanes before, Lanes word)
    {
        return _mm256_permute2f128_pd(before, word, 0x21);
    }
    [[gnu::always_inline]] static inline void leave(Lanes word, std::size_t part, double* const* out, std::size_t n)
    {
        const __m128d pair = part == 0 ? _mm256_castpd256_pd128(word) : _mm256_extractf128_pd(word, 1);
        _mm_storel_pd(out[0] + n, pair);
        _mm_storeh_pd(out[1] + n, pair);
    }
};

/// One section a word.
template <>
struct LineLoops<4> {
    [[gnu::always_inline]] static inline Lanes enter(const double* const* in, std::size_t n, Lanes)
    {
        return Lanes{in[0][n], in[1][n], in[2][n], in[3][n]};
    }
    [[gnu::always_inline]] static inline Lanes follow(Lanes before, Lanes) { return before; }
    [[gnu::always_inline]] static inline void leave(Lanes word, std::size_t, double* const* out, std::size_t n)
    {
        const __m128d high = _mm256_extractf128_pd(word, 1);
        _mm_storel_pd(out[0] + n, _mm256_castpd256_pd128(word));
        _mm_storeh_pd(out[1] + n, _mm256_castpd256_pd128(word));
        _mm_storel_pd(out[2] + n, high);
        _mm_storeh_pd(out[3] + n, high);
    }
};

#include "Audio/Filters/BiquadSeriesLoops.inl"

CRun* find(EFilterKind shape, std::size_t sectionCount, std::size_t lineCount)
{
    if (lineCount == 4)
        return findRun<4>(shape, sectionCount);
    return lineCount == 2 && sectionCount > 1 ? findRun<2>(shape, sectionCount) : nullptr;
}

constexpr CBiquadSeriesKernels kKernels = {find};

} // namespace quads

#pragma GCC pop_options

} // namespace

const CBiquadSeriesKernels& quadBiquadSeriesKernels()
{
    return quads::kKernels;
}

} // namespace qrb
