// SPDX-License-Identifier: GPL-3.0-or-later
// Included in a namespace of its own for each width, which has declared:
//   kWordLines, Lanes            lines in a word, and the word: for each line its two paths
//   gather(lines, n)             doubles 2 n and 2 n + 1 of each line
//   scatter(word, lines, n)      the way back
//   gatherTwice(lines, n)        double n of each line, for both of its paths
//   scatterFirst(word, lines, n) the undelayed paths' doubles as double n of each line
//   swapped(word)                the paths of each line exchanged
//
// Arrays of words are reached by constant places alone: otherwise they would stay in memory, which the feedback of the
// sections would have to wait for.

/// Which way a stage changes the rate.
enum class EWay : std::uint8_t { up, down };

/// A half-band stage on the lines of a word. In a full turn each section is a sample behind the one before it: what they
/// do does not wait for one another, so that few operations wait in the processor at a time.
template <std::size_t Count, EWay Way>
struct CWord {
    static constexpr std::size_t kLag = Count - 1; ///< turns until a sample comes out
    /// Which of the signals the delayed path meets: on the way down the odd samples.
    static constexpr std::size_t kDelayedPhase = Way == EWay::up ? 0 : 1;
    /// On the way up the plain stage would get each sample doubled and halve what it makes of it.
    static constexpr double kMemoryScale = Way == EWay::up ? 2.0 : 1.0;

    Lanes coefficients[Count];
    Lanes inputs[Count];  ///< last one of each section
    Lanes outputs[Count]; ///< last one of each section, and what the next section gets
    Lanes held{};         ///< on the way down: the last output of the delayed path in the place of the undelayed one

    /// Runs sections From to To - 1 on what has arrived at them, the last one first. `x` arrives at section 0.
    template <std::size_t From, std::size_t To>
    [[gnu::always_inline]] inline void turn(Lanes x)
    {
        if constexpr (From < To) {
            constexpr std::size_t kAt = To - 1;
            Lanes u = x;
            if constexpr (kAt > 0)
                u = outputs[kAt - 1];
            // Only the last product waits for the section's own output.
            outputs[kAt] = (coefficients[kAt] * u + inputs[kAt]) - coefficients[kAt] * outputs[kAt];
            inputs[kAt] = u;
            turn<From, kAt>(x);
        }
    }
    template <std::size_t At = 0>
    [[gnu::always_inline]] inline void runInOrder(Lanes x)
    {
        turn<At, At + 1>(x);
        if constexpr (At + 1 < Count)
            runInOrder<At + 1>(x);
    }

    [[gnu::always_inline]] static inline Lanes fetch(const double* const* in, std::size_t n)
    {
        return Way == EWay::up ? gatherTwice(in, n) : gather(in, n);
    }
    [[gnu::always_inline]] inline void hand(double* const* out, std::size_t n)
    {
        const Lanes y = outputs[Count - 1];
        if constexpr (Way == EWay::up) {
            scatter(y, out, n);
        } else {
            scatterFirst((y + held) * 0.5, out, n);
            held = swapped(y);
        }
    }
    template <std::size_t At = 0>
    [[gnu::always_inline]] inline void fill(const double* const* in)
    {
        if constexpr (At < kLag) {
            turn<0, At + 1>(fetch(in, At));
            fill<At + 1>(in);
        }
    }
    template <std::size_t At = 1>
    [[gnu::always_inline]] inline void drain(double* const* out, std::size_t steps)
    {
        if constexpr (At < Count) {
            turn<At, Count>(held);
            hand(out, steps - Count + At);
            drain<At + 1>(out, steps);
        }
    }
    [[gnu::always_inline]] inline void run(const double* const* in, double* const* out, std::size_t steps)
    {
        if (steps < Count) {
            for (std::size_t n = 0; n < steps; ++n) {
                runInOrder(fetch(in, n));
                hand(out, n);
            }
            return;
        }
        // Addresses of their own: what is written might otherwise be an address.
        const double* from[kWordLines];
        double* to[kWordLines];
        for (std::size_t i = 0; i < kWordLines; ++i) {
            from[i] = in[i];
            to[i] = out[i];
        }
        fill(from);
        for (std::size_t n = kLag; n < steps; ++n) {
            turn<0, Count>(fetch(from, n));
            hand(to, n - kLag);
        }
        drain(to, steps);
    }

    /// The signals at place At of the lines.
    template <std::size_t At>
    [[gnu::always_inline]] static inline Lanes loadSignals(void* const* states)
    {
        double pairs[kWordLines][2];
        const double* lines[kWordLines];
        for (std::size_t i = 0; i < kWordLines; ++i) {
            const auto& state = *static_cast<const CHalfBandState<Count>*>(states[i]);
            pairs[i][0] = state.signals[0][At][0];
            pairs[i][1] = state.signals[kDelayedPhase][At][1];
            lines[i] = pairs[i];
        }
        return gather(lines, 0);
    }
    template <std::size_t At>
    [[gnu::always_inline]] static inline void saveSignals(void* const* states, Lanes word)
    {
        double pairs[kWordLines][2];
        double* lines[kWordLines];
        for (std::size_t i = 0; i < kWordLines; ++i)
            lines[i] = pairs[i];
        scatter(word, lines, 0);
        for (std::size_t i = 0; i < kWordLines; ++i) {
            auto& state = *static_cast<CHalfBandState<Count>*>(states[i]);
            state.signals[0][At][0] = pairs[i][0];
            state.signals[kDelayedPhase][At][1] = pairs[i][1];
        }
    }
    template <std::size_t At = 0>
    [[gnu::always_inline]] inline void load(void* const* states)
    {
        const double* lines[kWordLines];
        for (std::size_t i = 0; i < kWordLines; ++i)
            lines[i] = static_cast<const CHalfBandState<Count>*>(states[i])->coefficients[At];
        coefficients[At] = gather(lines, 0);
        inputs[At] = loadSignals<At>(states) * (1.0 / kMemoryScale);
        outputs[At] = loadSignals<At + 1>(states) * (1.0 / kMemoryScale);
        if constexpr (At + 1 < Count) {
            load<At + 1>(states);
        } else if constexpr (Way == EWay::down) {
            for (std::size_t i = 0; i < kWordLines; ++i)
                lines[i] = &static_cast<const CHalfBandState<Count>*>(states[i])->head.delayed;
            held = gatherTwice(lines, 0);
        }
    }
    template <std::size_t At = 0>
    [[gnu::always_inline]] inline void save(void* const* states) const
    {
        saveSignals<At>(states, inputs[At] * kMemoryScale);
        if constexpr (At + 1 < Count) {
            save<At + 1>(states);
        } else {
            saveSignals<Count>(states, outputs[At] * kMemoryScale);
            if constexpr (Way == EWay::down) {
                double* lines[kWordLines];
                for (std::size_t i = 0; i < kWordLines; ++i)
                    lines[i] = &static_cast<CHalfBandState<Count>*>(states[i])->head.delayed;
                scatterFirst(held, lines, 0);
            }
        }
    }
};

template <std::size_t Count, EWay Way>
void runWord(void* const* states, const double* const* in, double* const* out, std::size_t steps)
{
    CWord<Count, Way> word;
    word.load(states);
    word.run(in, out, steps);
    word.save(states);
}

using CWordRun = void(void* const*, const double* const*, double* const*, std::size_t);

/// By number of coefficients.
template <EWay Way>
struct CWordRuns {
    static constexpr CWordRun* kRuns[] = {runWord<1, Way>, runWord<2, Way>, runWord<3, Way>, runWord<4, Way>,
                                          runWord<5, Way>, runWord<6, Way>, runWord<7, Way>, runWord<8, Way>};
};

/// The lines that fill words; what is left of them goes to the kernels that run one line at a time.
template <EWay Way>
void runLines(std::size_t count, void* const* states, std::size_t lineCount, const double* const* in,
              double* const* out, std::size_t steps)
{
    std::size_t line = 0;
    for (; line + kWordLines <= lineCount; line += kWordLines)
        CWordRuns<Way>::kRuns[count - 1](states + line, in + line, out + line, steps);
    if (line < lineCount) {
        const CHalfBandKernels& single = pairHalfBandKernels();
        (Way == EWay::up ? single.up : single.down)(count, states + line, lineCount - line, in + line, out + line,
                                                    steps);
    }
}

constexpr CHalfBandKernels kKernels = {runLines<EWay::up>, runLines<EWay::down>};
