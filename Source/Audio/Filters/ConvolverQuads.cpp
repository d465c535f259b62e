// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Filters/ConvolverKernels.h"

#include "Platform/CBlockTransformPlan.h"

namespace qrb {

namespace {

// Only what stands in this region is compiled for the wider processor. Functions that other files share must not be: the
// linker keeps one copy of them for all processors.
#pragma GCC push_options
#pragma GCC target("avx2")

namespace quads {

constexpr std::size_t kLanes = 4;
using Lanes = double __attribute__((vector_size(32), may_alias));
using Loose = double __attribute__((vector_size(32), may_alias, aligned(8)));

[[gnu::always_inline]] inline void join(Lanes re, Lanes im, double* out)
{
    *reinterpret_cast<Loose*>(out) = __builtin_shufflevector(re, im, 0, 4, 1, 5);
    *reinterpret_cast<Loose*>(out + 4) = __builtin_shufflevector(re, im, 2, 6, 3, 7);
}

[[gnu::always_inline]] inline void part(const double* in, Lanes& re, Lanes& im)
{
    const Lanes first = *reinterpret_cast<const Loose*>(in);
    const Lanes second = *reinterpret_cast<const Loose*>(in + 4);
    re = __builtin_shufflevector(first, second, 0, 2, 4, 6);
    im = __builtin_shufflevector(first, second, 1, 3, 5, 7);
}

using Quad = Lanes;

[[gnu::always_inline]] inline Quad spread(double value)
{
    return Quad{value, value, value, value};
}

[[gnu::always_inline]] inline Quad loadQuad(const double* at)
{
    return *reinterpret_cast<const Loose*>(at);
}

[[gnu::always_inline]] inline void storeQuad(double* at, Quad quad)
{
    *reinterpret_cast<Loose*>(at) = quad;
}

[[gnu::always_inline]] inline void transpose(Quad& a, Quad& b, Quad& c, Quad& d)
{
    const Quad evenAB = __builtin_shufflevector(a, b, 0, 4, 2, 6);
    const Quad oddAB = __builtin_shufflevector(a, b, 1, 5, 3, 7);
    const Quad evenCD = __builtin_shufflevector(c, d, 0, 4, 2, 6);
    const Quad oddCD = __builtin_shufflevector(c, d, 1, 5, 3, 7);
    a = __builtin_shufflevector(evenAB, evenCD, 0, 1, 4, 5);
    b = __builtin_shufflevector(oddAB, oddCD, 0, 1, 4, 5);
    c = __builtin_shufflevector(evenAB, evenCD, 2, 3, 6, 7);
    d = __builtin_shufflevector(oddAB, oddCD, 2, 3, 6, 7);
}

#include "Audio/Filters/ConvolverLoops.inl"
// The convolver's spectra come from here.
#include "Audio/Filters/BlockTransformLoops.inl"

} // namespace quads

#pragma GCC pop_options

} // namespace

const CConvolverKernels& quadConvolverKernels()
{
    return quads::kKernels;
}

} // namespace qrb
