// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAlignedSamples.h"
#include "Audio/Filters/ConvolverKernels.h"

#include <span>

namespace qrb {

/// Convolution with a short response tap by tap, not late at all. Thread: the owner's.
class CDirectHead {
public:
    /// `taps` has at least one tap. Allocates.
    explicit CDirectHead(std::span<const double> taps, const CConvolverKernels& kernels = convolverKernels());

    /// Clears the signal: the next sample counts as what the input had always been.
    void reset() { m_isFirstBlock = true; }
    /// Runs `count` samples; adds to `out` where `isAdded`, else replaces it. `in` and `out` do not overlap.
    void process(const double* in, double* out, std::size_t count, bool isAdded);

private:
    /// Samples that run in one go.
    static constexpr std::size_t kPiece = 256;

    const CConvolverKernels* m_kernels;
    CAlignedSamples m_taps;
    CAlignedSamples m_line; ///< the samples that the taps still reach, then a piece of input
    bool m_isFirstBlock = true;
};

} // namespace qrb
