// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAlignedSamples.h"
#include "Audio/Filters/ConvolverKernels.h"

#include <span>

namespace qrb {

namespace platform {
class CRealFFTPlan;
}

/// Uniformly partitioned convolution by transforms: output late by one block of half the plan's size.
/// Thread: the owner's.
class CConvolverSegment {
public:
    /// `plan` outlives the segment. Allocates.
    CConvolverSegment(const platform::CRealFFTPlan& plan, std::span<const double> taps,
                      const CConvolverKernels& kernels);

    /// Goes on as if the input had always been `level`.
    void prime(double level);
    /// Runs `count` samples; adds to `out` where `isAdded`, else replaces it. `in` and `out` do not overlap. `terms` is
    /// scratch for a spectrum, aligned to a cache line.
    void process(const double* in, double* out, std::size_t count, bool isAdded, double* terms);

private:
    void runBlock(double* terms);

    const platform::CRealFFTPlan* m_plan;
    const CConvolverKernels* m_kernels;
    std::size_t m_block;
    CSpectrumShape m_shape;
    CAlignedSamples m_frame;   ///< the block that comes in, then the one before it
    CAlignedSamples m_output;  ///< lower half: the block that goes out
    CAlignedSamples m_taps;    ///< spectra of the partitions, scaled for the transform's way there and back
    CAlignedSamples m_history; ///< ring of as many spectra of frames, newest first
    std::size_t m_newest = 0;
    std::size_t m_position = 0; ///< in the block
};

} // namespace qrb
