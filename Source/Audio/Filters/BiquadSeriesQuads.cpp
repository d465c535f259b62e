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

template <class Get>
[[gnu::always_inline]] inline Lanes lanesOf(Get get)
{
    return Lanes{get(0), get(1), get(2), get(3)};
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

} // namespace quads

/// Two words at once, so that the processor has something to do while one of them waits for its last sample.
namespace octets {

constexpr std::size_t kLanes = 8;

struct Lanes {
    __m256d low, high;

    [[gnu::always_inline]] friend inline Lanes operator+(Lanes a, Lanes b) { return {a.low + b.low, a.high + b.high}; }
    [[gnu::always_inline]] friend inline Lanes operator-(Lanes a, Lanes b) { return {a.low - b.low, a.high - b.high}; }
    [[gnu::always_inline]] friend inline Lanes operator*(Lanes a, Lanes b) { return {a.low * b.low, a.high * b.high}; }
};

template <class Get>
[[gnu::always_inline]] inline Lanes lanesOf(Get get)
{
    return {quads::lanesOf(get), quads::lanesOf([=](std::size_t lane) { return get(lane + quads::kLanes); })};
}
[[gnu::always_inline]] inline void storeLanes(Lanes word, double* at)
{
    quads::storeLanes(word.low, at);
    quads::storeLanes(word.high, at + 4);
}

/// One section a word.
template <std::size_t Lines>
struct LineLoops {
    [[gnu::always_inline]] static inline Lanes enter(const double* const* in, std::size_t n, Lanes)
    {
        const __m256d low = {in[0][n], in[1][n], in[2][n], in[3][n]};
        if constexpr (Lines == 6)
            return {low, __m256d{in[4][n], in[5][n], 0.0, 0.0}};
        else
            return {low, __m256d{in[4][n], in[5][n], in[6][n], in[7][n]}};
    }
    [[gnu::always_inline]] static inline Lanes follow(Lanes before, Lanes) { return before; }
    [[gnu::always_inline]] static inline void leave(Lanes word, std::size_t, double* const* out, std::size_t n)
    {
        quads::LineLoops<4>::leave(word.low, 0, out, n);
        if constexpr (Lines == 6)
            quads::LineLoops<2>::leave(word.high, 0, out + 4, n);
        else
            quads::LineLoops<4>::leave(word.high, 0, out + 4, n);
    }
};

#include "Audio/Filters/BiquadSeriesLoops.inl"

} // namespace octets

#pragma GCC pop_options

CBiquadSeriesKernels::Run* find(EFilterKind shape, std::size_t sectionCount, std::size_t lineCount)
{
    switch (lineCount) {
    case 8:
        return octets::findRun<8>(shape, sectionCount);
    case 6:
        return octets::findRun<6>(shape, sectionCount);
    case 4:
        return quads::findRun<4>(shape, sectionCount);
    case 2:
        return sectionCount > 1 ? quads::findRun<2>(shape, sectionCount) : nullptr;
    default:
        return nullptr;
    }
}

constexpr CBiquadSeriesKernels kKernels = {find};

} // namespace

const CBiquadSeriesKernels& quadBiquadSeriesKernels()
{
    return kKernels;
}

} // namespace qrb
