// SPDX-License-Identifier: GPL-3.0-or-later
// Included behind ConvolverLoops.inl in the same namespaces, which have also declared:
//   Quad                          four doubles with + - *
//   loadQuad(at), storeQuad(at, quad), spread(value)
//   transpose(quads)              lane i of quad k to lane k of quad i, of four

struct CQuads {
    Quad re;
    Quad im;
};

[[gnu::always_inline]] inline void add(const CQuads& a, const CQuads& b, CQuads& sum)
{
    sum.re = a.re + b.re;
    sum.im = a.im + b.im;
}

[[gnu::always_inline]] inline void subtract(const CQuads& a, const CQuads& b, CQuads& difference)
{
    difference.re = a.re - b.re;
    difference.im = a.im - b.im;
}

/// Times a factor.
[[gnu::always_inline]] inline void turn(CQuads& x, const CQuads& w)
{
    const Quad re = x.re * w.re - x.im * w.im;
    x.im = x.re * w.im + x.im * w.re;
    x.re = re;
}

/// Times the conjugate of a factor.
[[gnu::always_inline]] inline void turnBack(CQuads& x, const CQuads& w)
{
    const Quad re = x.re * w.re + x.im * w.im;
    x.im = x.im * w.re - x.re * w.im;
    x.re = re;
}

[[gnu::always_inline]] inline void loadQuads(CQuads& x, const double* re, const double* im)
{
    x.re = loadQuad(re);
    x.im = loadQuad(im);
}

/// Sums of x[k] * i^(q k), for q = 0 to 3; `isBack`: of x[k] * i^(-q k).
template <bool isBack>
[[gnu::always_inline]] inline void sumQuarters(CQuads (&x)[4])
{
    CQuads even;
    CQuads evenOff;
    CQuads odd;
    CQuads oddOff;
    add(x[0], x[2], even);
    subtract(x[0], x[2], evenOff);
    add(x[1], x[3], odd);
    subtract(x[1], x[3], oddOff);
    add(even, odd, x[0]);
    subtract(even, odd, x[2]);
    CQuads& plus = x[isBack ? 3 : 1];
    CQuads& minus = x[isBack ? 1 : 3];
    plus.re = evenOff.re - oddOff.im;
    plus.im = evenOff.im + oddOff.re;
    minus.re = evenOff.re + oddOff.im;
    minus.im = evenOff.im - oddOff.re;
}

struct CSplitFactors {
    CQuads w[3];

    [[gnu::always_inline]] explicit CSplitFactors(const double* factors)
    {
        for (std::size_t k = 0; k < 3; ++k) {
            w[k].re = spread(factors[2 * k]);
            w[k].im = spread(factors[2 * k + 1]);
        }
    }
};

/// Real and imaginary parts of a run of terms.
struct CTermsIn {
    const double* re;
    const double* im;
};
struct CTermsOut {
    double* re;
    double* im;
};

void splitTwo(const double* factors, std::size_t part, CTermsIn in, CTermsOut out)
{
    CQuads w;
    w.re = spread(factors[0]);
    w.im = spread(factors[1]);
    for (std::size_t n = 0; n < part; n += 4) {
        CQuads x[2];
        loadQuads(x[0], in.re + n, in.im + n);
        loadQuads(x[1], in.re + n + part, in.im + n + part);
        turn(x[1], w);
        CQuads sum;
        CQuads difference;
        add(x[0], x[1], sum);
        subtract(x[0], x[1], difference);
        storeQuad(out.re + n, sum.re);
        storeQuad(out.im + n, sum.im);
        storeQuad(out.re + n + part, difference.re);
        storeQuad(out.im + n + part, difference.im);
    }
}

void splitFour(const double* factors, std::size_t part, CTermsIn in, CTermsOut out)
{
    const CSplitFactors split(factors);
    for (std::size_t n = 0; n < part; n += 4) {
        CQuads x[4];
#pragma GCC unroll 4
        for (std::size_t k = 0; k < 4; ++k)
            loadQuads(x[k], in.re + n + k * part, in.im + n + k * part);
#pragma GCC unroll 4
        for (std::size_t k = 1; k < 4; ++k)
            turn(x[k], split.w[k - 1]);
        sumQuarters<false>(x);
#pragma GCC unroll 4
        for (std::size_t k = 0; k < 4; ++k) {
            storeQuad(out.re + n + k * part, x[k].re);
            storeQuad(out.im + n + k * part, x[k].im);
        }
    }
}

/// The last two splits; `tile` and the one `stride` behind it take the values.
[[gnu::always_inline]] inline void splitLeaf(const double* factors, CTermsIn in, double* tile, std::size_t stride)
{
    const CSplitFactors split(factors);
    CQuads x[4];
#pragma GCC unroll 4
    for (std::size_t k = 0; k < 4; ++k)
        loadQuads(x[k], in.re + 4 * k, in.im + 4 * k);
#pragma GCC unroll 4
    for (std::size_t k = 1; k < 4; ++k)
        turn(x[k], split.w[k - 1]);
    sumQuarters<false>(x);
    transpose(x[0].re, x[1].re, x[2].re, x[3].re);
    transpose(x[0].im, x[1].im, x[2].im, x[3].im);
#pragma GCC unroll 4
    for (std::size_t k = 1; k < 4; ++k) {
        CQuads w;
        loadQuads(w, factors + 8 * k, factors + 8 * k + 4);
        turn(x[k], w);
    }
    sumQuarters<false>(x);
#pragma GCC unroll 4
    for (std::size_t k = 0; k < 4; ++k) {
        double* at = tile + (k / 2) * stride + k % 2 * 4;
        storeQuad(at, x[k].re);
        storeQuad(at + kSpectrumTileBins, x[k].im);
    }
}

[[gnu::always_inline]] inline void joinLeaf(const double* factors, CTermsOut data)
{
    CQuads x[4];
#pragma GCC unroll 4
    for (std::size_t k = 0; k < 4; ++k)
        loadQuads(x[k], data.re + 4 * k, data.im + 4 * k);
    sumQuarters<true>(x);
#pragma GCC unroll 4
    for (std::size_t k = 1; k < 4; ++k) {
        CQuads w;
        loadQuads(w, factors + 8 * k, factors + 8 * k + 4);
        turnBack(x[k], w);
    }
    transpose(x[0].re, x[1].re, x[2].re, x[3].re);
    transpose(x[0].im, x[1].im, x[2].im, x[3].im);
    sumQuarters<true>(x);
    const CSplitFactors split(factors);
#pragma GCC unroll 4
    for (std::size_t k = 1; k < 4; ++k)
        turnBack(x[k], split.w[k - 1]);
#pragma GCC unroll 4
    for (std::size_t k = 0; k < 4; ++k) {
        storeQuad(data.re + 4 * k, x[k].re);
        storeQuad(data.im + 4 * k, x[k].im);
    }
}

/// Without `out.re` only the imaginary parts are made.
template <bool isWhole>
[[gnu::always_inline]] inline void joinFour(const double* factors, std::size_t part, CTermsIn in, CTermsOut out)
{
    const CSplitFactors split(factors);
    for (std::size_t n = 0; n < part; n += 4) {
        CQuads x[4];
#pragma GCC unroll 4
        for (std::size_t k = 0; k < 4; ++k)
            loadQuads(x[k], in.re + n + k * part, in.im + n + k * part);
        sumQuarters<true>(x);
#pragma GCC unroll 4
        for (std::size_t k = 1; k < 4; ++k)
            turnBack(x[k], split.w[k - 1]);
#pragma GCC unroll 4
        for (std::size_t k = 0; k < 4; ++k) {
            if constexpr (isWhole)
                storeQuad(out.re + n + k * part, x[k].re);
            storeQuad(out.im + n + k * part, x[k].im);
        }
    }
}

/// Only the imaginary parts are made.
void joinTwo(const double* factors, std::size_t part, CTermsIn in, double* out)
{
    CQuads w;
    w.re = spread(factors[0]);
    w.im = spread(factors[1]);
    for (std::size_t n = 0; n < part; n += 4) {
        CQuads x[2];
        loadQuads(x[0], in.re + n, in.im + n);
        loadQuads(x[1], in.re + n + part, in.im + n + part);
        CQuads difference;
        subtract(x[0], x[1], difference);
        turnBack(difference, w);
        storeQuad(out + n, x[0].im + x[1].im);
        storeQuad(out + n + part, difference.im);
    }
}

/// Up to this many terms, passes run one after the other through all of them; more are taken part by part first, so
/// that each part stays near the processor.
inline constexpr std::size_t kNearTerms = 1024;

struct CForwardRun {
    const platform::CBlockTransformPlan& plan;
    double* list;
    std::size_t stride;
};

/// Splits the terms of `count` parts of `length`, the first of which is part `first` of `pass`.
void splitParts(const CForwardRun& run, std::size_t pass, std::size_t first, std::size_t count, std::size_t length,
                CTermsIn in, CTermsOut work)
{
    for (; pass < run.plan.passCount(); ++pass) {
        const double* factors = run.plan.pass(pass) + first * platform::CBlockTransformPlan::kSplitFactors;
        for (std::size_t i = 0; i < count; ++i, factors += platform::CBlockTransformPlan::kSplitFactors)
            splitFour(factors, length / 4, {in.re + i * length, in.im + i * length},
                      {work.re + i * length, work.im + i * length});
        in = {work.re, work.im};
        first *= 4;
        count *= 4;
        length /= 4;
        if (count * length > kNearTerms) {
            for (std::size_t i = 0; i < count; ++i)
                splitParts(run, pass + 1, first + i, 1, length, {in.re + i * length, in.im + i * length},
                           {work.re + i * length, work.im + i * length});
            return;
        }
    }
    for (std::size_t i = 0; i < count; ++i) {
        const double* factors = run.plan.leaves() + (first + i) * platform::CBlockTransformPlan::kLeafFactors;
        splitLeaf(factors, {in.re + i * length, in.im + i * length}, run.list + 2 * (first + i) * run.stride,
                  run.stride);
    }
}

void transformBlocks(const platform::CBlockTransformPlan& plan, const double* older, const double* newer, double* work,
                     double* list, std::size_t stride)
{
    const std::size_t block = plan.block();
    CTermsIn in{older, newer};
    const CTermsOut out{work, work + block};
    const CForwardRun run{plan, list, stride};
    if (const double* halving = plan.halving()) {
        splitTwo(halving, block / 2, in, out);
        in = {out.re, out.im};
        splitParts(run, 0, 0, 2, block / 2, in, out);
    } else {
        // Streams at distances of powers of two share few places of the cache: twice as many do not fit.
        if (block > kNearTerms) {
            for (std::size_t n = 0; n < block; n += 4) {
                storeQuad(out.re + n, loadQuad(older + n));
                storeQuad(out.im + n, loadQuad(newer + n));
            }
            in = {out.re, out.im};
        }
        splitParts(run, 0, 0, 1, block, in, out);
    }
}

/// The way back from splitParts for one part of `pass`.
void joinParts(const platform::CBlockTransformPlan& plan, std::size_t pass, std::size_t first, std::size_t length,
               CTermsOut work)
{
    std::size_t count = 1;
    std::size_t last = pass;
    for (; last < plan.passCount() && count * length <= kNearTerms; ++last) {
        first *= 4;
        count *= 4;
        length /= 4;
    }
    if (last < plan.passCount()) {
        for (std::size_t i = 0; i < 4; ++i)
            joinParts(plan, pass + 1, 4 * first + i, length / 4, {work.re + i * length / 4, work.im + i * length / 4});
        joinFour<true>(plan.pass(pass) + first * platform::CBlockTransformPlan::kSplitFactors, length / 4,
                       {work.re, work.im}, work);
        return;
    }
    for (std::size_t i = 0; i < count; ++i)
        joinLeaf(plan.leaves() + (first + i) * platform::CBlockTransformPlan::kLeafFactors,
                 {work.re + i * length, work.im + i * length});
    while (last-- > pass) {
        first /= 4;
        count /= 4;
        length *= 4;
        const double* factors = plan.pass(last) + first * platform::CBlockTransformPlan::kSplitFactors;
        for (std::size_t i = 0; i < count; ++i, factors += platform::CBlockTransformPlan::kSplitFactors)
            joinFour<true>(factors, length / 4, {work.re + i * length, work.im + i * length},
                           {work.re + i * length, work.im + i * length});
    }
}

void transformBack(const platform::CBlockTransformPlan& plan, double* work, double* newer)
{
    const std::size_t block = plan.block();
    const CTermsOut out{work, work + block};
    if (const double* halving = plan.halving()) {
        joinParts(plan, 0, 0, block / 2, out);
        joinParts(plan, 0, 1, block / 2, {out.re + block / 2, out.im + block / 2});
        joinTwo(halving, block / 2, {out.re, out.im}, newer);
    } else if (plan.passCount() != 0) {
        for (std::size_t i = 0; i < 4; ++i)
            joinParts(plan, 1, i, block / 4, {out.re + i * block / 4, out.im + i * block / 4});
        joinFour<false>(plan.pass(0), block / 4, {out.re, out.im}, {nullptr, newer});
    } else {
        joinParts(plan, 0, 0, block, out);
        for (std::size_t n = 0; n < block; n += 4)
            storeQuad(newer + n, loadQuad(out.im + n));
    }
}

constexpr CConvolverKernels kKernels = {transformBlocks, transformBack, sumProducts, convolve, interleave, takeApart};
