// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/EnvelopeFollower.h"

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

[[gnu::always_inline]] inline Lanes largerOf(Lanes a, Lanes b)
{
    return _mm256_max_pd(a, b);
}

[[gnu::always_inline]] inline Lanes smallerOf(Lanes a, Lanes b)
{
    return _mm256_min_pd(a, b);
}

#include "Audio/Processes/FollowerLoops.inl"

} // namespace quads

#pragma GCC pop_options

} // namespace

std::span<const FFollowerKernel> quadFollowerKernels()
{
    return quads::kKernels;
}

} // namespace qrb
