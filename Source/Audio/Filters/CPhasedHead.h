// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAlignedSamples.h"
#include "Audio/Filters/CPhasedSegment.h"
#include "Audio/Filters/ConvolverKernels.h"

#include <span>

namespace qrb {

/// What a direct head does, for a line whose samples at even and at odd places come and go apart. Gives the bits of the
/// head. Thread: the owner's.
class CPhasedHead {
public:
    /// `taps` has at least one tap. Allocates.
    explicit CPhasedHead(std::span<const double> taps, const CConvolverKernels& kernels = convolverKernels());

    /// Goes on as if the samples at even and at odd places had always been these.
    void prime(double evenLevel, double oddLevel);
    /// Runs `count` pairs; adds to `out` where `isAdded`, else replaces it. `in` and `out` do not overlap.
    void process(const CPhasesIn& in, const CPhasesOut& out, std::size_t count, bool isAdded);

private:
    /// Pairs that run in one go.
    static constexpr std::size_t kPiece = 256;

    void keepPast(CAlignedSamples& line, std::size_t length) const;

    const CConvolverKernels* m_kernels;
    CAlignedSamples m_taps;
    CAlignedSamples m_evenTaps;
    CAlignedSamples m_oddTaps;
    std::size_t m_reach;    ///< pairs that the taps reach back
    CAlignedSamples m_even; ///< the samples that the taps still reach, then a piece of input
    CAlignedSamples m_odd;
    std::size_t m_oddPairs = 0; ///< as many more until all that is left of odd samples is zeros
};

} // namespace qrb
