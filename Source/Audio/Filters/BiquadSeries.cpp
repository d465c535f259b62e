// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Filters/BiquadSeriesKernels.h"

#include "Audio/Filters/FilterKernels.h"
#include "Audio/VectorWidth.h"

#include <algorithm>

namespace qrb {

namespace {

namespace pairs {

constexpr std::size_t kLanes = 2;
using Lanes = double __attribute__((vector_size(16), may_alias));
using Loose = double __attribute__((vector_size(16), may_alias, aligned(8)));

template <class Get>
[[gnu::always_inline]] inline Lanes lanesOf(Get get)
{
    return Lanes{get(0), get(1)};
}
[[gnu::always_inline]] inline void storeLanes(Lanes word, double* at)
{
    *reinterpret_cast<Loose*>(at) = word;
}

template <std::size_t Lines>
struct LineLoops;

template <>
struct LineLoops<2> {
    [[gnu::always_inline]] static inline Lanes enter(const double* const* in, std::size_t n, Lanes)
    {
        return Lanes{in[0][n], in[1][n]};
    }
    [[gnu::always_inline]] static inline Lanes follow(Lanes before, Lanes) { return before; }
    [[gnu::always_inline]] static inline void leave(Lanes word, std::size_t, double* const* out, std::size_t n)
    {
        out[0][n] = word[0];
        out[1][n] = word[1];
    }
};

#include "Audio/Filters/BiquadSeriesLoops.inl"

CRun* find(EFilterKind shape, std::size_t sectionCount, std::size_t lineCount)
{
    return lineCount == 2 && sectionCount > 1 ? findRun<2>(shape, sectionCount) : nullptr;
}

constexpr CBiquadSeriesKernels kKernels = {find};

} // namespace pairs

constexpr std::size_t kMaxLines = CBiquadSeriesKernels::kMaxLines;
constexpr std::size_t kMaxSections = CBiquadSeriesKernels::kMaxSections;

/// Runs one section by itself, over a few samples in place.
void runSection(EFilterKind shape, CBiquadState* const* states, std::size_t lineCount, double* const* samples,
                std::size_t length)
{
    for (std::size_t line = 0; line < lineCount; line += 2) {
        void* pair[] = {states[line], states[line + 1]};
        runBiquadPair(shape, pair, samples + line, samples + line, length);
    }
}

} // namespace

bool runBiquadSeries(const CBiquadSeriesKernels& kernels, EFilterKind shape, CBiquadState* const* states,
                     std::size_t sectionCount, std::size_t lineCount, const double* const* in, double* const* out,
                     std::size_t length)
{
    const std::size_t lag = sectionCount - 1;
    CBiquadSeriesKernels::Run* run =
        length >= 4 * sectionCount ? kernels.find(shape, sectionCount, lineCount) : nullptr;
    if (run == nullptr)
        return false;
    double margin[kMaxLines][kMaxSections];
    double last[kMaxSections * kMaxLines];
    std::fill_n(last, sectionCount * lineCount, 0.0);
    double* samples[kMaxLines];
    const double* from[kMaxLines];
    // Each section starts as many samples ahead as there are sections behind it.
    for (std::size_t i = 0; i < lineCount; ++i) {
        std::copy_n(in[i], lag, margin[i]);
        samples[i] = margin[i];
        from[i] = in[i] + lag;
    }
    for (std::size_t k = 0; k < lag; ++k) {
        runSection(shape, states + k * lineCount, lineCount, samples, lag - k);
        for (std::size_t i = 0; i < lineCount; ++i)
            last[k * lineCount + i] = margin[i][lag - k - 1];
    }
    run(states, from, out, length - lag, last);
    // In the end each has as many samples left as there are sections in front of it.
    for (std::size_t k = 1; k <= lag; ++k) {
        for (std::size_t i = 0; i < lineCount; ++i) {
            samples[i] = margin[i] + lag - k;
            *samples[i] = last[(k - 1) * lineCount + i];
        }
        runSection(shape, states + k * lineCount, lineCount, samples, k);
    }
    for (std::size_t i = 0; i < lineCount; ++i)
        std::copy_n(margin[i], lag, out[i] + length - lag);
    return true;
}

const CBiquadSeriesKernels& pairBiquadSeriesKernels()
{
    return pairs::kKernels;
}

const CBiquadSeriesKernels& biquadSeriesKernels()
{
    static const CBiquadSeriesKernels& best =
        hasVectorWidth(EVectorWidth::quads) ? quadBiquadSeriesKernels() : pairs::kKernels;
    return best;
}

} // namespace qrb
