// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAlignedSamples.h"
#include "Audio/Filters/ConvolverKernels.h"

#include <span>

namespace qrb {

namespace platform {
class CBlockTransformPlan;
}

/// Uniformly partitioned convolution by transforms: output late by one of the plan's blocks.
/// Thread: the owner's.
class CConvolverSegment {
public:
    /// `plan` outlives the segment. Allocates.
    CConvolverSegment(const platform::CBlockTransformPlan& plan, std::span<const double> taps,
                      const CConvolverKernels& kernels);

    /// Goes on as if the input had always been `level`. `work` as in process().
    void prime(double level, double* work);
    /// Runs `count` samples; adds to `out` where `isAdded`, else replaces it. `in` and `out` do not overlap. `work` is
    /// scratch for a spectrum, aligned to a cache line.
    void process(const double* in, double* out, std::size_t count, bool isAdded, double* work);

private:
    void runBlock(double* work);

    const platform::CBlockTransformPlan* m_plan;
    const CConvolverKernels* m_kernels;
    std::size_t m_block;
    CSpectrumShape m_shape;
    CAlignedSamples m_frame;   ///< two blocks: the one that comes in, and the one before it
    CAlignedSamples m_output;  ///< the block that goes out
    CAlignedSamples m_taps;    ///< spectra of the partitions, scaled for the transform's way there and back
    CAlignedSamples m_history; ///< ring of as many spectra of frames, newest first
    double m_tapSum = 0.0;
    std::size_t m_incoming = 0; ///< where its block begins in the frame
    std::size_t m_newest = 0;
    std::size_t m_position = 0; ///< in the block
};

} // namespace qrb
