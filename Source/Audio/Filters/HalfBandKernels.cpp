// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Filters/HalfBandKernels.h"

#include "Audio/Filters/HalfBandState.h"
#include "Audio/VectorWidth.h"

namespace qrb {

namespace {

namespace pairs {

constexpr std::size_t kWordLines = 1;
using Lanes = double __attribute__((vector_size(16), may_alias));
using Loose = double __attribute__((vector_size(16), may_alias, aligned(8)));

[[gnu::always_inline]] inline Lanes gather(const double* const* lines, std::size_t n)
{
    return *reinterpret_cast<const Loose*>(lines[0] + 2 * n);
}

[[gnu::always_inline]] inline void scatter(Lanes word, double* const* lines, std::size_t n)
{
    *reinterpret_cast<Loose*>(lines[0] + 2 * n) = word;
}

[[gnu::always_inline]] inline Lanes gatherTwice(const double* const* lines, std::size_t n)
{
    return Lanes{lines[0][n], lines[0][n]};
}

[[gnu::always_inline]] inline void scatterFirst(Lanes word, double* const* lines, std::size_t n)
{
    lines[0][n] = word[0];
}

[[gnu::always_inline]] inline Lanes swapped(Lanes word)
{
    return __builtin_shufflevector(word, word, 1, 0);
}

#include "Audio/Filters/HalfBandLoops.inl"

} // namespace pairs

} // namespace

const CHalfBandKernels& pairHalfBandKernels()
{
    return pairs::kKernels;
}

const CHalfBandKernels& halfBandKernels()
{
    static const CHalfBandKernels& best = hasVectorWidth(EVectorWidth::quads) ? quadHalfBandKernels() : pairs::kKernels;
    return best;
}

} // namespace qrb
