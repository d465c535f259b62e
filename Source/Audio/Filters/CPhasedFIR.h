// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Filters/CPhasedHead.h"
#include "Core/CArray.h"

#include <optional>
#include <span>

namespace qrb {

namespace platform {
class CBlockTransformPool;
}

/// What CFilterFIR does, for a line whose samples at even and at odd places come and go apart: the filter of a rate
/// change, half of whose input is zeros or half of whose output nobody hears. Equals it but for rounding.
/// Thread: the owner's.
class CPhasedFIR {
public:
    /// Below this a block is no longer two of the transform's.
    static constexpr int kMinLog2Block = 5;

    /// All taps, at least one, in blocks of 1 << `log2Block` samples, by which the output is late. Allocates.
    void setPartitioned(std::span<const double> taps, int log2Block, platform::CBlockTransformPool& plans,
                        const CConvolverKernels& kernels = convolverKernels());
    /// The first taps directly; not late at all. Allocates.
    void setZeroLatency(std::span<const double> taps, platform::CBlockTransformPool& plans,
                        const CConvolverKernels& kernels = convolverKernels());

    /// Clears the signal: the next sample at each of the two places counts as what the input had always been there.
    void reset() { m_isFirstBlock = true; }
    /// Runs `count` pairs. `in` and `out` do not overlap.
    void process(const CPhasesIn& in, const CPhasesOut& out, std::size_t count);

private:
    CArray<CPhasedSegment, 1> m_segments;
    std::optional<CPhasedHead> m_head;
    CAlignedSamples m_work;
    bool m_isFirstBlock = true;
};

} // namespace qrb
