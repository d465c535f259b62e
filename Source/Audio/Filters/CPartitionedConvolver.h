// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Filters/CConvolverSegment.h"
#include "Core/CArray.h"

#include <span>

namespace qrb {

namespace platform {
class CBlockTransformPool;
}

/// Convolution with a long response in partitions that grow along it; late by its smallest block.
///
/// The output depends on the samples alone, not on how they are cut into calls. The work of a partition is done when its
/// block is full. Thread: the owner's.
class CPartitionedConvolver {
public:
    static constexpr int kMinLog2Block = 4;
    static constexpr int kMaxLog2Block = 14;

    /// `taps` has at least one tap, `log2Block` is brought into the limits above, the pool outlives the convolver.
    /// Allocates.
    CPartitionedConvolver(std::span<const double> taps, int log2Block, platform::CBlockTransformPool& plans,
                          const CConvolverKernels& kernels = convolverKernels());

    /// Clears the signal: the next sample counts as what the input had always been.
    void reset() { m_isFirstBlock = true; }
    /// Runs `count` samples. `in` and `out` do not overlap.
    void process(const double* in, double* out, std::size_t count);

private:
    CArray<CConvolverSegment, 1> m_segments;
    CAlignedSamples m_work;
    bool m_isFirstBlock = true;
};

} // namespace qrb
