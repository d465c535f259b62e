// SPDX-License-Identifier: GPL-3.0-or-later
// Included in a namespace of its own for each width, which has declared:
//   kLanes, Lanes        doubles in a word, and the word
//   Loose                the same word at any address
//   firstOf(word)        its first double
//   join(re, im, out)    writes re 0, im 0, re 1, im 1, ...
//   part(in, re, im)     the way back

/// Words of real parts, and as many of imaginary parts, that are summed in one go: four sums each, all in registers.
inline constexpr std::size_t kGroup = kLanes == 1 ? 1 : 2;
inline constexpr std::size_t kGroupBins = kGroup * kLanes;

/// The four products of two complex numbers are summed apart: no sum waits for another.
struct CSums {
    Lanes rr[kGroup] = {};
    Lanes ii[kGroup] = {};
    Lanes ri[kGroup] = {};
    Lanes ir[kGroup] = {};
};

[[gnu::always_inline]] inline Lanes load(const double* at)
{
    return *reinterpret_cast<const Loose*>(at);
}

[[gnu::always_inline]] inline void addProducts(CSums& sums, const double* x, const double* h, std::size_t count)
{
    for (const double* const end = x + count * kSpectrumTile; x != end; x += kSpectrumTile, h += kSpectrumTile) {
#pragma GCC unroll 4
        for (std::size_t g = 0; g < kGroup; ++g) {
            Lanes xr = load(x + g * kLanes);
            Lanes xi = load(x + g * kLanes + kSpectrumTileBins);
            Lanes hr = load(h + g * kLanes);
            Lanes hi = load(h + g * kLanes + kSpectrumTileBins);
            // Keeps the compiler from loading each of them anew for its second use.
            asm("" : "+x"(xr), "+x"(xi), "+x"(hr), "+x"(hi));
            sums.rr[g] += xr * hr;
            sums.ii[g] += xi * hi;
            sums.ri[g] += xr * hi;
            sums.ir[g] += xi * hr;
        }
    }
}

void sumProducts(const CSpectrumShape& shape, const double* history, std::size_t newest, const double* taps,
                 double* terms, bool isAdded)
{
    const std::size_t ahead = shape.count - newest;
    double* const im = terms + shape.tiles * kSpectrumTileBins;
    for (std::size_t tile = 0; tile < shape.tiles; ++tile) {
        for (std::size_t bin = 0; bin < kSpectrumTileBins; bin += kGroupBins) {
            CSums sums;
            addProducts(sums, history + newest * kSpectrumTile + bin, taps + bin, ahead);
            addProducts(sums, history + bin, taps + ahead * kSpectrumTile + bin, newest);
#pragma GCC unroll 4
            for (std::size_t g = 0; g < kGroup; ++g) {
                const std::size_t at = tile * kSpectrumTileBins + bin + g * kLanes;
                Lanes re = sums.rr[g] - sums.ii[g];
                Lanes turned = sums.ri[g] + sums.ir[g];
                if (isAdded) {
                    re = load(terms + at) + re;
                    turned = load(im + at) + turned;
                }
                *reinterpret_cast<Loose*>(terms + at) = re;
                *reinterpret_cast<Loose*>(im + at) = turned;
            }
        }
        history += shape.count * kSpectrumTile;
        taps += shape.count * kSpectrumTile;
    }
}

/// Where a tap finds its samples: all in `even`, or every other tap in `odd`.
template <bool isTwo>
[[gnu::always_inline]] inline const double* sampleOf(const CLinePair& line, std::size_t k)
{
    if constexpr (isTwo)
        return (k % 2 == 0 ? line.even : line.odd) - k / 2;
    else
        return line.even - k;
}

/// `words` words of output from place `at` on.
template <class Word, std::size_t words, bool isTwo>
[[gnu::always_inline]] inline void convolveAt(std::span<const double> taps, const CLinePair& line, std::size_t at,
                                              double* out, bool isAdded)
{
    constexpr std::size_t kWidth = sizeof(Word) / sizeof(double);
    Word sums[words] = {};
    const auto addTap = [&](std::size_t k) {
        const double* samples = sampleOf<isTwo>(line, k) + at;
#pragma GCC unroll 4
        for (std::size_t w = 0; w < words; ++w)
            sums[w] += taps[k] * *reinterpret_cast<const Word*>(samples + w * kWidth);
    };
    std::size_t k = 0;
    for (; k + 2 <= taps.size(); k += 2) {
        addTap(k);
        addTap(k + 1);
    }
    if (k < taps.size())
        addTap(k);
#pragma GCC unroll 4
    for (std::size_t w = 0; w < words; ++w) {
        Word& to = *reinterpret_cast<Word*>(out + at + w * kWidth);
        to = isAdded ? to + sums[w] : sums[w];
    }
}

template <bool isTwo>
[[gnu::always_inline]] inline void convolveLines(std::span<const double> taps, const CLinePair& line, double* out,
                                                 std::size_t count, bool isAdded)
{
    constexpr std::size_t kWords = 4;
    std::size_t i = 0;
    for (; i + kWords * kLanes <= count; i += kWords * kLanes)
        convolveAt<Loose, kWords, isTwo>(taps, line, i, out, isAdded);
    for (; i + kLanes <= count; i += kLanes)
        convolveAt<Loose, 1, isTwo>(taps, line, i, out, isAdded);
    for (; i < count; ++i)
        convolveAt<double, 1, isTwo>(taps, line, i, out, isAdded);
}

void convolve(std::span<const double> taps, const CLinePair& line, double* out, std::size_t count, bool isAdded)
{
    if (line.odd == nullptr)
        convolveLines<false>(taps, line, out, count, isAdded);
    else
        convolveLines<true>(taps, line, out, count, isAdded);
}

void interleave(const double* even, const double* odd, double* out, std::size_t count)
{
    std::size_t i = 0;
    for (; i + kLanes <= count; i += kLanes)
        join(load(even + i), load(odd + i), out + 2 * i);
    for (; i < count; ++i) {
        out[2 * i] = even[i];
        out[2 * i + 1] = odd[i];
    }
}

void takeApart(const double* in, double* even, double* odd, std::size_t count)
{
    std::size_t i = 0;
    for (; i + kLanes <= count; i += kLanes) {
        Lanes first;
        Lanes second;
        part(in + 2 * i, first, second);
        *reinterpret_cast<Loose*>(even + i) = first;
        *reinterpret_cast<Loose*>(odd + i) = second;
    }
    for (; i < count; ++i) {
        even[i] = in[2 * i];
        odd[i] = in[2 * i + 1];
    }
}
