// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Filters/ConvolverKernels.h"

#include "Audio/VectorWidth.h"
#include "Platform/CBlockTransformPlan.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace qrb {

namespace {

namespace plain {

constexpr std::size_t kLanes = 1;
using Lanes = double;
using Loose = double;

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

struct Quad {
    double lane[4];
};

template <class Operation>
[[gnu::always_inline]] inline Quad eachLane(const Quad& a, const Quad& b, Operation operation)
{
    return {{operation(a.lane[0], b.lane[0]), operation(a.lane[1], b.lane[1]), operation(a.lane[2], b.lane[2]),
             operation(a.lane[3], b.lane[3])}};
}

[[gnu::always_inline]] inline Quad operator+(const Quad& a, const Quad& b)
{
    return eachLane(a, b, std::plus<>());
}

[[gnu::always_inline]] inline Quad operator-(const Quad& a, const Quad& b)
{
    return eachLane(a, b, std::minus<>());
}

[[gnu::always_inline]] inline Quad operator*(const Quad& a, const Quad& b)
{
    return eachLane(a, b, std::multiplies<>());
}

[[gnu::always_inline]] inline Quad spread(double value)
{
    return {{value, value, value, value}};
}

[[gnu::always_inline]] inline Quad loadQuad(const double* at)
{
    return {{at[0], at[1], at[2], at[3]}};
}

[[gnu::always_inline]] inline void storeQuad(double* at, const Quad& quad)
{
    std::copy_n(quad.lane, 4, at);
}

[[gnu::always_inline]] inline void transpose(Quad& a, Quad& b, Quad& c, Quad& d)
{
    Quad* const quads[] = {&a, &b, &c, &d};
    for (std::size_t k = 0; k < 4; ++k)
        for (std::size_t i = k + 1; i < 4; ++i)
            std::swap(quads[k]->lane[i], quads[i]->lane[k]);
}

#include "Audio/Filters/ConvolverLoops.inl"
// The convolver's spectra come from here.
#include "Audio/Filters/BlockTransformLoops.inl"

} // namespace plain

namespace pairs {

constexpr std::size_t kLanes = 2;
using Lanes = double __attribute__((vector_size(16), may_alias));
using Loose = double __attribute__((vector_size(16), may_alias, aligned(8)));

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

struct Quad {
    Lanes low;
    Lanes high;
};

[[gnu::always_inline]] inline Quad operator+(const Quad& a, const Quad& b)
{
    return {a.low + b.low, a.high + b.high};
}

[[gnu::always_inline]] inline Quad operator-(const Quad& a, const Quad& b)
{
    return {a.low - b.low, a.high - b.high};
}

[[gnu::always_inline]] inline Quad operator*(const Quad& a, const Quad& b)
{
    return {a.low * b.low, a.high * b.high};
}

[[gnu::always_inline]] inline Quad spread(double value)
{
    return {Lanes{value, value}, Lanes{value, value}};
}

[[gnu::always_inline]] inline Quad loadQuad(const double* at)
{
    return {*reinterpret_cast<const Loose*>(at), *reinterpret_cast<const Loose*>(at + 2)};
}

[[gnu::always_inline]] inline void storeQuad(double* at, const Quad& quad)
{
    *reinterpret_cast<Loose*>(at) = quad.low;
    *reinterpret_cast<Loose*>(at + 2) = quad.high;
}

[[gnu::always_inline]] inline void transpose(Quad& a, Quad& b, Quad& c, Quad& d)
{
    const Quad first{__builtin_shufflevector(a.low, b.low, 0, 2), __builtin_shufflevector(c.low, d.low, 0, 2)};
    const Quad second{__builtin_shufflevector(a.low, b.low, 1, 3), __builtin_shufflevector(c.low, d.low, 1, 3)};
    const Quad third{__builtin_shufflevector(a.high, b.high, 0, 2), __builtin_shufflevector(c.high, d.high, 0, 2)};
    d = {__builtin_shufflevector(a.high, b.high, 1, 3), __builtin_shufflevector(c.high, d.high, 1, 3)};
    a = first;
    b = second;
    c = third;
}

#include "Audio/Filters/ConvolverLoops.inl"
// The convolver's spectra come from here.
#include "Audio/Filters/BlockTransformLoops.inl"

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

const CConvolverKernels& convolverKernels()
{
    static const CConvolverKernels& best =
        hasVectorWidth(EVectorWidth::quads) ? quadConvolverKernels() : pairs::kKernels;
    return best;
}

} // namespace qrb
