// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Filters/ConvolverKernels.h"

namespace qrb {

namespace {

namespace plain {

constexpr std::size_t kLanes = 1;
using Lanes = double;
using Loose = double;

[[gnu::always_inline]] inline double firstOf(Lanes word)
{
    return word;
}

[[gnu::always_inline]] inline void join(Lanes re, Lanes im, double* out)
{
    out[0] = re;
    out[1] = im;
}

[[gnu::always_inline]] inline void part(const double* in, Lanes& re, Lanes& im)
{
    re = in[0];
    im = in[1];
}

#include "Audio/Filters/ConvolverLoops.inl"

} // namespace plain

namespace pairs {

constexpr std::size_t kLanes = 2;
using Lanes = double __attribute__((vector_size(16), may_alias));
using Loose = double __attribute__((vector_size(16), may_alias, aligned(8)));

[[gnu::always_inline]] inline double firstOf(Lanes word)
{
    return word[0];
}

[[gnu::always_inline]] inline void join(Lanes re, Lanes im, double* out)
{
    *reinterpret_cast<Loose*>(out) = __builtin_shufflevector(re, im, 0, 2);
    *reinterpret_cast<Loose*>(out + 2) = __builtin_shufflevector(re, im, 1, 3);
}

[[gnu::always_inline]] inline void part(const double* in, Lanes& re, Lanes& im)
{
    const Lanes first = *reinterpret_cast<const Loose*>(in);
    const Lanes second = *reinterpret_cast<const Loose*>(in + 2);
    re = __builtin_shufflevector(first, second, 0, 2);
    im = __builtin_shufflevector(first, second, 1, 3);
}

#include "Audio/Filters/ConvolverLoops.inl"

} // namespace pairs

} // namespace

const CConvolverKernels& plainConvolverKernels()
{
    return plain::kKernels;
}

const CConvolverKernels& pairConvolverKernels()
{
    return pairs::kKernels;
}

bool hasQuadConvolverKernels()
{
    return __builtin_cpu_supports("avx2");
}

const CConvolverKernels& convolverKernels()
{
    static const CConvolverKernels& best = hasQuadConvolverKernels() ? quadConvolverKernels() : pairs::kKernels;
    return best;
}

} // namespace qrb
