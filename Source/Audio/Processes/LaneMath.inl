// SPDX-License-Identifier: GPL-3.0-or-later

// Logarithm, exponential and the gain curve over lanes of doubles. Included once for each vector width, inside a
// namespace that defines:
//   Lanes, Ints     kLanes doubles, and as many unsigned 64-bit integers (the plain types where kLanes is 1)
//   rootOf(Lanes)   square root, correctly rounded
//   isNoneAbove(Lanes, Lanes)   whether no lane of the first is above that of the second, nor unordered with it
// Each lane takes the same correctly rounded steps whatever the width, so all widths give the same bits. The functions
// neither are nor call templates, which may be compiled outside the region whose target the including file sets.

[[gnu::always_inline]] inline Lanes spread(double x)
{
    return x + Lanes{};
}

[[gnu::always_inline]] inline Lanes loadLanes(const double* from)
{
    Lanes lanes;
    __builtin_memcpy(&lanes, from, sizeof(Lanes));
    return lanes;
}

[[gnu::always_inline]] inline void storeLanes(double* to, Lanes lanes)
{
    __builtin_memcpy(to, &lanes, sizeof(Lanes));
}

/// The same for the end of a line, where less than kLanes numbers are left.
[[gnu::always_inline]] inline Lanes loadPart(const double* from, std::size_t count)
{
    Lanes lanes{};
    __builtin_memcpy(&lanes, from, count * sizeof(double));
    return lanes;
}

[[gnu::always_inline]] inline void storePart(double* to, Lanes lanes, std::size_t count)
{
    __builtin_memcpy(to, &lanes, count * sizeof(double));
}

/// Natural logarithm, within 1 ulp. What is below the smallest normal number counts as 0 and gives minus infinity;
/// infinity and what is no number count as the largest power of two.
[[gnu::always_inline]] inline Lanes logOf(Lanes x)
{
    // x = m * 2^k, m from sqrt(1/2) to sqrt(2): moves the mantissa so that its carry into the exponent falls there.
    const Ints bits = __builtin_bit_cast(Ints, x) + (0x3FF0000000000000 - 0x3FE6A09E667F3BCD);
    constexpr double kExponentBase = 0x1p52 + 1023.0;
    const Lanes k = __builtin_bit_cast(Lanes, (bits >> 52) | 0x4330000000000000) - kExponentBase;
    const Lanes f = __builtin_bit_cast(Lanes, (bits & 0x000FFFFFFFFFFFFF) + 0x3FE6A09E667F3BCD) - 1.0;

    // ln(1 + f) = 2 artanh(s) = f - s * (f - r) with s = f / (2 + f), the series of artanh beyond its first term in r.
    const Lanes s = f / (f + 2.0);
    const Lanes z = s * s;
    const Lanes z2 = z * z;
    const Lanes low = 0x1.5555555555558p-1 + z * 0x1.99999999952e2p-2;
    const Lanes middle = 0x1.2492492df148dp-2 + z * 0x1.c71c62e5800a1p-3;
    const Lanes high = (0x1.7462b4ab2ef6bp-3 + z * 0x1.39fe606542ddep-3) + z2 * 0x1.2b584aae78a57p-3;
    const Lanes r = z * (low + z2 * (middle + z2 * high));
    const Lanes half = f * f * 0.5;
    // The first part of ln 2 has 42 bits, so that its product with k is exact.
    const Lanes rest = half - (s * (half + r) + k * 0x1.ef35793c76730p-45);
    const Lanes result = k * 0x1.62e42fefa3800p-1 - (rest - f);
    return x < spread(0x1p-1022) ? spread(-__builtin_inf()) : result;
}

/// Exponential, within 1.2 ulp, of x up to 709. Below -708 the result is 0, never a denormal number.
[[gnu::always_inline]] inline Lanes expOf(Lanes x)
{
    // x = k * ln 2 + r; adding 1.5 * 2^52 rounds to an integer and leaves it in the low bits.
    const Lanes shifted = x * 0x1.71547652b82fep+0 + 0x1.8p52;
    const Lanes k = shifted - 0x1.8p52;
    const Lanes r = (x - k * 0x1.62e42fefa3800p-1) - k * 0x1.ef35793c76730p-45;
    const Lanes r2 = r * r;
    const Lanes r4 = r2 * r2;
    const Lanes p0 = 0.5 + r * 0x1.5555555555556p-3;
    const Lanes p2 = 0x1.5555555553d37p-5 + r * 0x1.11111111109a6p-7;
    const Lanes p4 = 0x1.6c16c1789d1d7p-10 + r * 0x1.a01a01a7cebcdp-13;
    const Lanes p6 = 0x1.a019b8ca26fcfp-16 + r * 0x1.71de0d85293b8p-19;
    const Lanes p8 = 0x1.2891d4ffbb0f9p-22 + r * 0x1.af390ba7e6f47p-26;
    const Lanes p = (p0 + r2 * p2) + r4 * ((p4 + r2 * p6) + r4 * p8);
    const Lanes mantissa = 1.0 + (r + r2 * p);
    const Lanes result =
        __builtin_bit_cast(Lanes, __builtin_bit_cast(Ints, mantissa) + (__builtin_bit_cast(Ints, shifted) << 52));
    return x < spread(-708.0) ? spread(0.0) : result;
}

/// Change of gain in nepers.
[[gnu::always_inline]] inline Lanes bendOf(const CGainCurve& curve, double threshold, Lanes logarithm, bool isDownward)
{
    const Lanes decibels = logarithm * kDecibelsPerNeper;
    const Lanes over = isDownward ? threshold - decibels : decibels - threshold;
    const Lanes along = over - curve.kneeStart;
    const Lanes arc = curve.arcCentre + rootOf(curve.arcRadius2 - along * along);
    const Lanes bent = over < spread(curve.kneeEnd) ? arc : over * curve.slope;
    return (over > spread(curve.kneeStart) ? bent : spread(0.0)) * kNepersPerDecibel;
}

/// A stretch in three passes: the processor overlaps more samples of short chains than of one long one.
[[gnu::always_inline]] inline void bendStretch(const CGainCurve& curve, double threshold, const double* in, double* out,
                                               std::size_t count, bool isDownward, bool isInverse)
{
    for (std::size_t i = 0; i < count; i += kLanes)
        storeLanes(out + i, logOf(loadLanes(in + i)));
    for (std::size_t i = 0; i < count; i += kLanes)
        storeLanes(out + i, bendOf(curve, threshold, loadLanes(out + i), isDownward));
    for (std::size_t i = 0; i < count; i += kLanes) {
        const Lanes gain = expOf(loadLanes(out + i));
        storeLanes(out + i, isInverse ? 1.0 / gain : gain);
    }
}

/// Samples in front of the knee have a gain of exactly 1, so whole pieces of them are not computed.
[[gnu::always_inline]] inline void runGain(const CGainCurve& curve, double threshold, const double* in, double* out,
                                           std::size_t count, bool isDownward, bool isInverse)
{
    constexpr std::size_t kPiece = 16;
    // Further from the knee than the logarithm's rounding can tell.
    constexpr double kMargin = 1e-9;
    const double knee = isDownward ? threshold - curve.kneeStart : threshold + curve.kneeStart;
    const double idle = __builtin_exp(knee * kNepersPerDecibel) * (isDownward ? 1.0 + kMargin : 1.0 - kMargin);
    const auto isIdle = [&](std::size_t at) __attribute__((always_inline))
    {
        bool isAll = true;
        for (std::size_t i = at; i < at + kPiece; i += kLanes) {
            const Lanes x = loadLanes(in + i);
            isAll &= isDownward ? isNoneAbove(spread(idle), x) : isNoneAbove(x, spread(idle));
        }
        return isAll;
    };
    const std::size_t pieces = count - count % kPiece;
    std::size_t done = 0;
    while (done < pieces) {
        std::size_t end = done;
        while (end < pieces && !isIdle(end))
            end += kPiece;
        bendStretch(curve, threshold, in + done, out + done, end - done, isDownward, isInverse);
        for (done = end; done < pieces && isIdle(done); done += kPiece)
            for (std::size_t i = done; i < done + kPiece; i += kLanes)
                storeLanes(out + i, spread(1.0));
    }
    const std::size_t whole = count - count % kLanes;
    bendStretch(curve, threshold, in + pieces, out + pieces, whole - pieces, isDownward, isInverse);
    if (whole == count)
        return;
    const Lanes gain = expOf(bendOf(curve, threshold, logOf(loadPart(in + whole, count - whole)), isDownward));
    storePart(out + whole, isInverse ? 1.0 / gain : gain, count - whole);
}

void reduceAbove(const CGainCurve& curve, double threshold, const double* in, double* out, std::size_t count)
{
    runGain(curve, threshold, in, out, count, false, false);
}

void raiseAbove(const CGainCurve& curve, double threshold, const double* in, double* out, std::size_t count)
{
    runGain(curve, threshold, in, out, count, false, true);
}

void reduceBelow(const CGainCurve& curve, double threshold, const double* in, double* out, std::size_t count)
{
    runGain(curve, threshold, in, out, count, true, false);
}

void raiseBelow(const CGainCurve& curve, double threshold, const double* in, double* out, std::size_t count)
{
    runGain(curve, threshold, in, out, count, true, true);
}

void logLine(const double* in, double* out, std::size_t count)
{
    for (std::size_t i = 0; i < count; i += kLanes) {
        const std::size_t part = count - i < kLanes ? count - i : kLanes;
        storePart(out + i, logOf(loadPart(in + i, part)), part);
    }
}

void expLine(const double* in, double* out, std::size_t count)
{
    for (std::size_t i = 0; i < count; i += kLanes) {
        const std::size_t part = count - i < kLanes ? count - i : kLanes;
        storePart(out + i, expOf(loadPart(in + i, part)), part);
    }
}

constexpr CGainKernels kKernels{{{reduceAbove, raiseAbove}, {reduceBelow, raiseBelow}}, logLine, expLine};
