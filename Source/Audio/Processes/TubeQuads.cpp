// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/Tube.h"

#include <immintrin.h>

namespace qrb {

namespace {

// Only what stands in this region is compiled for the wider processor. Functions that other files share must not be: the
// linker keeps one copy of them for all processors.
#pragma GCC push_options
#pragma GCC target("avx2")

namespace quads {

constexpr std::size_t kLanes = 4;
using Lanes = double __attribute__((vector_size(32)));

[[gnu::always_inline]] inline Lanes magnitude(Lanes x)
{
    return _mm256_andnot_pd(_mm256_set1_pd(-0.0), x);
}

[[gnu::always_inline]] inline Lanes withSignOf(Lanes x, Lanes sign)
{
    return _mm256_or_pd(x, _mm256_and_pd(_mm256_set1_pd(-0.0), sign));
}

template <typename Mask>
[[gnu::always_inline]] inline bool isAny(Mask mask)
{
    return _mm256_movemask_pd(reinterpret_cast<Lanes>(mask)) != 0;
}

#include "Audio/Processes/TubeLoops.inl"

} // namespace quads

#pragma GCC pop_options

} // namespace

std::span<const FTubeKernel> quadTubeKernels()
{
    return quads::kKernels;
}

} // namespace qrb
