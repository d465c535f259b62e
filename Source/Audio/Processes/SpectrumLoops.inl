// SPDX-License-Identifier: GPL-3.0-or-later
// The loops of CSpectrumKernels for one vector width. Included inside a namespace that has the lanes and
//   load(at), store(at, lanes)   at any address
//   sumTerms(a, b)               re + im of the terms in `a` and those in `b`, in the lanes' own order
//   ordered(lanes)               in the order of the terms

[[gnu::always_inline]] inline Lanes windowedSquares(const double* at)
{
    const Lanes term = load(at) * all(2.0) - (load(at - 2) + load(at + 2));
    return term * term;
}

/// `now`: the magnitudes; nobody reads them for maxima.
template <ESpectrumKind kKind>
[[gnu::always_inline]] inline void join(Lanes square, Lanes now, const CSpectrumRates& rates, double* value,
                                        double* mean)
{
    const Lanes before = load(value);
    if constexpr (kKind == ESpectrumKind::rtAverage) {
        store(value, before + (now - before) * all(rates.value));
    } else if constexpr (kKind == ESpectrumKind::max) {
        store(value, largerOf(before, square));
    } else if constexpr (kKind == ESpectrumKind::average) {
        store(value, before + now);
    } else if constexpr (kKind == ESpectrumKind::rtMax) {
        const Lanes fallen = before + (now - before) * all(rates.value);
        store(value, select(now > before, now, fallen));
    } else {
        const Lanes meanBefore = load(mean);
        const Lanes meanNow = meanBefore + (now - meanBefore) * all(rates.value);
        const Lanes distance = meanNow - now;
        store(mean, meanNow);
        store(value, magnitude(before + (distance * distance - before) * all(rates.variance)));
    }
}

template <ESpectrumKind kKind, bool kHasNext>
[[gnu::always_inline]] inline void joinTerms(const double* terms, std::size_t count, const CSpectrumRates& rates,
                                             CSpectrumBins bins, double* magnitudes)
{
    const CSpectrumRates here = rates; // nothing that is stored changes it
    for (std::size_t i = 0; i < count; i += kLanes) {
        const Lanes square = sumTerms(windowedSquares(terms + 2 * i), windowedSquares(terms + 2 * i + kLanes));
        if constexpr (kHasNext || kKind != ESpectrumKind::max) {
            const Lanes root = rootOf(square);
            if constexpr (kHasNext)
                store(magnitudes + i, root);
            join<kKind>(square, root, here, bins.values + i, bins.means + i);
        } else {
            join<kKind>(square, square, here, bins.values + i, bins.means + i);
        }
    }
}

template <ESpectrumKind kKind>
void joinFirst(const double* terms, std::size_t count, const CSpectrumRates& rates, CSpectrumBins bins,
               double* magnitudes)
{
    if (magnitudes != nullptr)
        joinTerms<kKind, true>(terms, count, rates, bins, magnitudes);
    else
        joinTerms<kKind, false>(terms, count, rates, bins, nullptr);
}

template <ESpectrumKind kKind>
void joinNext(const double* magnitudes, std::size_t count, const CSpectrumRates& rates, CSpectrumBins bins)
{
    const CSpectrumRates here = rates;
    for (std::size_t i = 0; i < count; i += kLanes) {
        const Lanes now = load(magnitudes + i);
        join<kKind>(now * now, now, here, bins.values + i, bins.means + i);
    }
}

bool areFinite(const double* values, std::size_t count)
{
    Lanes sum = all(0.0);
    for (std::size_t i = 0; i < count; i += kLanes)
        sum = sum + load(values + i) * all(0.0);
    return !isAny(sum != all(0.0));
}

template <bool kIsRoot>
void readBins(const double* values, std::size_t count, double gain, double* out)
{
    for (std::size_t i = 0; i < count; i += kLanes) {
        const Lanes value = load(values + i);
        store(out + i, ordered(kIsRoot ? rootOf(value) : value) * all(gain));
    }
}

constexpr CSpectrumKernels kKernels = {
    {joinFirst<ESpectrumKind::rtAverage>, joinFirst<ESpectrumKind::max>, joinFirst<ESpectrumKind::average>,
     joinFirst<ESpectrumKind::rtMax>, joinFirst<ESpectrumKind::rtSigma>},
    {joinNext<ESpectrumKind::rtAverage>, joinNext<ESpectrumKind::max>, joinNext<ESpectrumKind::average>,
     joinNext<ESpectrumKind::rtMax>, joinNext<ESpectrumKind::rtSigma>},
    areFinite,
    readBins<false>,
    readBins<true>,
};
