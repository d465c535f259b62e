// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Filters/CAudioFilterStageList.h"

#include <cstddef>
#include <span>

namespace qrb {

/// Recursive stages in series at run time, for one or more lines that share the coefficients. Stages of taps are left
/// out. Thread: audio; apply() allocates when stages or lines are new, run() never does.
class CFilterBank {
public:
    /// Drops all stages.
    void clear() { m_stages.clear(); }
    /// Drops all stages where the number differs.
    void setLineCount(std::size_t count);
    /// Takes a design over. A stage of the kind that runs in its place fades to its new coefficients and keeps its
    /// signal; others start at rest, and what the design no longer has is dropped.
    void apply(const CAudioFilterStageList& list, double sampleRate);
    /// Clears signals and drops fades; a stage then stands at the last coefficients it was given.
    void reset();
    [[nodiscard]] bool empty() const { return m_stages.empty(); }

    /// One buffer a line; outputs may be the inputs. Not for an empty bank.
    void run(const double* const* in, double* const* out, std::size_t length);

    /// The same for several banks of as many lines, one behind the other; their stages may then run in one pass. Empty
    /// ones are left out; not all are.
    static void runInSeries(std::span<CFilterBank* const> banks, const double* const* in, double* const* out,
                            std::size_t length);

    [[nodiscard]] bool hasHalfBands() const;
    /// Lines and stages that runTogether() takes at most.
    static constexpr std::size_t kMaxTogetherLines = 16;
    static constexpr std::size_t kMaxTogetherStages = 4;
    [[nodiscard]] std::size_t lineCount() const { return m_lineCount; }
    /// Whether runTogether() can run this bank beside the other: their stages are of the same kinds, and none fades.
    [[nodiscard]] bool canRunWith(const CFilterBank& other) const;
    /// The same as run() of each bank, with their lines one after the other.
    static void runTogether(std::span<CFilterBank* const> banks, const double* const* in, double* const* out,
                            std::size_t length);

    /// Whether runUp() would go on from what ran before.
    [[nodiscard]] bool canRunUp() const;
    /// The same as run() on `steps` samples of which each comes doubled and with a zero behind it; makes twice as many.
    /// Outputs are not the inputs.
    void runUp(const double* const* in, double* const* out, std::size_t steps);
    /// Whether runDown() would go on from what ran before.
    [[nodiscard]] bool canRunDown() const;
    /// Every other sample, from the first, of what run() makes of 2 * `steps` samples. Run() then needs forgetOdd().
    void runDown(const double* const* in, double* const* out, std::size_t steps);
    /// Lets the samples that runDown() leaves out begin from rest.
    void forgetOdd();

private:
    /// One stage of all lines.
    struct CStage {
        const CDCDAWFilterKind* kind = nullptr;
        double sampleRate = 0.0;
        CArray<double, 6> coefficients; ///< feed-forward, then feedback
        CArray<double, 0> memory;       ///< states, line after line, each from an even place on
        std::size_t stride = 0;         ///< doubles from one line's state to the next
        CArray<void*, 2> states;

        void init();
        [[nodiscard]] bool isFading() const;
        /// Coefficients a path of a half-band stage; 0 for other kinds.
        [[nodiscard]] std::size_t halfBandSize() const;
        void runAlone(const double* const* in, double* const* out, std::size_t length) const;
    };

    CArray<CStage, 2> m_stages;
    std::size_t m_lineCount = 1;
};

} // namespace qrb
