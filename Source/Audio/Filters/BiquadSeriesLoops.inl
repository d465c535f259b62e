// SPDX-License-Identifier: GPL-3.0-or-later
// Included in a namespace of its own for each width, which has declared:
//   kLanes, Lanes           doubles in a word, and the word
//   lanesOf(get)            a word of what `get` gives for each place in it
//   storeLanes(word, at)    its doubles in a row
//   LineLoops<Lines>        for each number of lines:
//     enter(in, n, word)    sample n of each line, then the first sections' doubles of the word
//     follow(before, word)  the last sections' doubles of the word before, then the first sections' of the word
//     leave(word, part, out, n)  the doubles of one of its sections as sample n of each line
//
// A word holds the lines of one section, or those of two sections in a row. Arrays of words are reached by constant
// places alone, so that they can stay in registers.

/// Output with the states before the step; `w` is the new one.
template <EFilterKind Shape>
[[gnu::always_inline]] inline Lanes sectionOutput(Lanes b0, [[maybe_unused]] Lanes b1, [[maybe_unused]] Lanes b2,
                                                  Lanes w, [[maybe_unused]] Lanes w1, Lanes w2)
{
    if constexpr (Shape == EFilterKind::biquadLowPass)
        return b0 * ((w + w2) + (w1 + w1));
    else if constexpr (Shape == EFilterKind::biquadHighPass)
        return b0 * ((w + w2) - (w1 + w1));
    else if constexpr (Shape == EFilterKind::biquadBandPass)
        return b0 * (w - w2);
    else if constexpr (Shape == EFilterKind::biquadNotch)
        return b0 * (w + w2) + b1 * w1;
    else
        return b0 * w + (b1 * w1 + b2 * w2);
}

template <EFilterKind Shape, std::size_t Sections, std::size_t Lines>
struct CSeries {
    static constexpr std::size_t kWordSections = kLanes / Lines;
    static constexpr std::size_t kUsed = kWordSections * Lines; ///< doubles of a word
    static constexpr std::size_t kWords = (Sections + kWordSections - 1) / kWordSections;

    Lanes b0[kWords], b1[kWords], b2[kWords], a1[kWords], a2[kWords];
    Lanes w1[kWords], w2[kWords];
    Lanes y[kWords]; ///< what each section gave last

    /// A number of the sections of a word; 0 for what has no section, which then stays silent.
    template <class Get>
    [[gnu::always_inline]] static inline Lanes gatherWord(std::size_t at, Get get)
    {
        return lanesOf([=](std::size_t lane) __attribute__((always_inline)) {
            const std::size_t place = at * kUsed + lane;
            return lane < kUsed && place < Sections * Lines ? get(place) : 0.0;
        });
    }
    template <std::size_t At = 0>
    [[gnu::always_inline]] inline void load(CBiquadState* const* states, const double* last)
    {
        b0[At] = gatherWord(At, [states](std::size_t place) { return states[place]->current.b0; });
        b1[At] = gatherWord(At, [states](std::size_t place) { return states[place]->current.b1; });
        b2[At] = gatherWord(At, [states](std::size_t place) { return states[place]->current.b2; });
        a1[At] = gatherWord(At, [states](std::size_t place) { return states[place]->current.a1; });
        a2[At] = gatherWord(At, [states](std::size_t place) { return states[place]->current.a2; });
        w1[At] = gatherWord(At, [states](std::size_t place) { return states[place]->w1; });
        w2[At] = gatherWord(At, [states](std::size_t place) { return states[place]->w2; });
        y[At] = gatherWord(At, [last](std::size_t place) { return last[place]; });
        if constexpr (At + 1 < kWords)
            load<At + 1>(states, last);
    }
    template <std::size_t At = 0>
    [[gnu::always_inline]] inline void save(CBiquadState* const* states, double* last) const
    {
        double numbers[3][kLanes];
        storeLanes(w1[At], numbers[0]);
        storeLanes(w2[At], numbers[1]);
        storeLanes(y[At], numbers[2]);
        for (std::size_t lane = 0; lane < kUsed && At * kUsed + lane < Sections * Lines; ++lane) {
            const std::size_t place = At * kUsed + lane;
            states[place]->w1 = numbers[0][lane];
            states[place]->w2 = numbers[1][lane];
            last[place] = numbers[2][lane];
        }
        if constexpr (At + 1 < kWords)
            save<At + 1>(states, last);
    }
    /// One sample of each section, the last ones first.
    template <std::size_t At = kWords - 1>
    [[gnu::always_inline]] inline void turn(const double* const* in, std::size_t n)
    {
        Lanes x;
        if constexpr (At == 0)
            x = LineLoops<Lines>::enter(in, n, y[0]);
        else
            x = LineLoops<Lines>::follow(y[At - 1], y[At]);
        const Lanes w = (x + a2[At] * w2[At]) + a1[At] * w1[At];
        y[At] = sectionOutput<Shape>(b0[At], b1[At], b2[At], w, w1[At], w2[At]);
        w2[At] = w1[At];
        w1[At] = w;
        if constexpr (At > 0)
            turn<At - 1>(in, n);
    }
    static void run(CBiquadState* const* states, const double* const* in, double* const* out, std::size_t turns,
                    double* last)
    {
        CSeries series;
        series.load(states, last);
        // Addresses of their own: what is written might otherwise be an address.
        const double* from[Lines];
        double* to[Lines];
        for (std::size_t i = 0; i < Lines; ++i) {
            from[i] = in[i];
            to[i] = out[i];
        }
        for (std::size_t n = 0; n < turns; ++n) {
            series.turn(from, n);
            LineLoops<Lines>::leave(series.y[kWords - 1], (Sections - 1) % kWordSections, to, n);
        }
        series.save(states, last);
    }
};

using CRun = CBiquadSeriesKernels::Run;

/// By number of sections.
template <EFilterKind Shape, std::size_t Lines>
struct CSeriesRuns {
    static constexpr CRun* kRuns[] = {CSeries<Shape, 1, Lines>::run, CSeries<Shape, 2, Lines>::run,
                                      CSeries<Shape, 3, Lines>::run, CSeries<Shape, 4, Lines>::run,
                                      CSeries<Shape, 5, Lines>::run, CSeries<Shape, 6, Lines>::run};
};

template <std::size_t Lines>
CRun* findRun(EFilterKind shape, std::size_t sectionCount)
{
    const std::size_t place = sectionCount - 1;
    switch (shape) {
    case EFilterKind::biquadLowPass:
        return CSeriesRuns<EFilterKind::biquadLowPass, Lines>::kRuns[place];
    case EFilterKind::biquadHighPass:
        return CSeriesRuns<EFilterKind::biquadHighPass, Lines>::kRuns[place];
    case EFilterKind::biquadBandPass:
        return CSeriesRuns<EFilterKind::biquadBandPass, Lines>::kRuns[place];
    case EFilterKind::biquadNotch:
        return CSeriesRuns<EFilterKind::biquadNotch, Lines>::kRuns[place];
    default:
        return CSeriesRuns<EFilterKind::biquad, Lines>::kRuns[place];
    }
}
