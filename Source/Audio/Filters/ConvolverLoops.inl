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

/// The four products of two complex numbers are summed apart: no sum waits for another, and the parts of DC and Nyquist,
/// which are no complex number, can be told in the end.
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
                 double* terms)
{
    const std::size_t ahead = shape.count - newest;
    double dc = 0.0;
    double nyquist = 0.0;
    for (std::size_t tile = 0; tile < shape.tiles; ++tile) {
        for (std::size_t bin = 0; bin < kSpectrumTileBins; bin += kGroupBins) {
            CSums sums;
            addProducts(sums, history + newest * kSpectrumTile + bin, taps + bin, ahead);
            addProducts(sums, history + bin, taps + ahead * kSpectrumTile + bin, newest);
            if (tile + bin == 0) {
                dc = firstOf(sums.rr[0]);
                nyquist = firstOf(sums.ii[0]);
            }
            double* out = terms + 2 * (tile * kSpectrumTileBins + bin);
#pragma GCC unroll 4
            for (std::size_t g = 0; g < kGroup; ++g)
                join(sums.rr[g] - sums.ii[g], sums.ri[g] + sums.ir[g], out + 2 * g * kLanes);
        }
        history += shape.count * kSpectrumTile;
        taps += shape.count * kSpectrumTile;
    }
    const std::size_t bins = shape.tiles * kSpectrumTileBins;
    terms[0] = dc;
    terms[1] = 0.0;
    terms[2 * bins] = nyquist;
    terms[2 * bins + 1] = 0.0;
}

void storeSpectrum(const CSpectrumShape& shape, const double* terms, double* list, std::size_t at)
{
    double* tile = list + at * kSpectrumTile;
    const std::size_t bins = shape.tiles * kSpectrumTileBins;
    for (std::size_t bin = 0; bin < bins; bin += kSpectrumTileBins) {
        for (std::size_t lane = 0; lane < kSpectrumTileBins; lane += kLanes) {
            Lanes re;
            Lanes im;
            part(terms + 2 * (bin + lane), re, im);
            *reinterpret_cast<Loose*>(tile + lane) = re;
            *reinterpret_cast<Loose*>(tile + lane + kSpectrumTileBins) = im;
        }
        tile += shape.count * kSpectrumTile;
    }
    list[at * kSpectrumTile + kSpectrumTileBins] = terms[2 * bins];
}

/// `words` words of output from `line` on.
template <class Word, std::size_t words>
[[gnu::always_inline]] inline void convolveAt(const double* taps, std::size_t tapCount, const double* line, double* out,
                                              bool isAdded)
{
    constexpr std::size_t kWidth = sizeof(Word) / sizeof(double);
    Word sums[words] = {};
    for (std::size_t k = 0; k < tapCount; ++k) {
        const double tap = taps[k];
#pragma GCC unroll 4
        for (std::size_t w = 0; w < words; ++w)
            sums[w] += tap * *reinterpret_cast<const Word*>(line - k + w * kWidth);
    }
#pragma GCC unroll 4
    for (std::size_t w = 0; w < words; ++w) {
        Word& to = *reinterpret_cast<Word*>(out + w * kWidth);
        to = isAdded ? to + sums[w] : sums[w];
    }
}

void convolve(const double* taps, std::size_t tapCount, const double* line, double* out, std::size_t count, bool isAdded)
{
    constexpr std::size_t kWords = 4;
    std::size_t i = 0;
    for (; i + kWords * kLanes <= count; i += kWords * kLanes)
        convolveAt<Loose, kWords>(taps, tapCount, line + i, out + i, isAdded);
    for (; i + kLanes <= count; i += kLanes)
        convolveAt<Loose, 1>(taps, tapCount, line + i, out + i, isAdded);
    for (; i < count; ++i)
        convolveAt<double, 1>(taps, tapCount, line + i, out + i, isAdded);
}

constexpr CConvolverKernels kKernels = {storeSpectrum, sumProducts, convolve};
