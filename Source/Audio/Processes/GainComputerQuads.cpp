// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/GainComputerQuads.h"

#include "Audio/Processes/GainComputer.h"

#include <immintrin.h>

#include <cstdint>

namespace qrb {

namespace {

// Only what stands in this region is compiled for the wider processor. Functions that other files share must not be: the
// linker keeps one copy of them for all processors.
#pragma GCC push_options
#pragma GCC target("avx2")

namespace quads {

constexpr std::size_t kLanes = 4;
using Lanes = double __attribute__((vector_size(32)));
using Ints = std::uint64_t __attribute__((vector_size(32)));

[[gnu::always_inline]] inline Lanes rootOf(Lanes x)
{
    return _mm256_sqrt_pd(x);
}

[[gnu::always_inline]] inline bool isNoneAbove(Lanes a, Lanes b)
{
    return _mm256_movemask_pd(_mm256_cmp_pd(a, b, _CMP_LE_OQ)) == 15;
}

#include "Audio/Processes/LaneMath.inl"

} // namespace quads

#pragma GCC pop_options

} // namespace

const CGainKernels& quadGainKernels()
{
    return quads::kKernels;
}

} // namespace qrb
