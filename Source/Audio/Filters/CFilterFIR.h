// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Filters/CDirectHead.h"
#include "Audio/Filters/CPartitionedConvolver.h"

#include <optional>
#include <span>

namespace qrb {

/// Finite response of any length on one line: a partitioned convolver, a direct head, or the one behind the other.
/// Thread: the owner's.
class CFilterFIR {
public:
    /// Taps of a direct head with a convolver behind it: the block by which that is late.
    static constexpr std::size_t kHeadTaps = 64;

    /// The signal passes.
    CFilterFIR() = default;

    /// All taps in blocks of 1 << `log2Block`, by which the output is late. No tap: the signal passes. Allocates.
    void setPartitioned(std::span<const double> taps, int log2Block, platform::CBlockTransformPool& plans);
    /// The first taps directly; not late at all. No tap: the signal passes. Allocates.
    void setZeroLatency(std::span<const double> taps, platform::CBlockTransformPool& plans);
    void clear();
    [[nodiscard]] bool empty() const { return !m_convolver && !m_head; }

    /// Clears the signal: the next sample counts as what the input had always been.
    void reset();
    /// Runs `count` samples, where there are taps. `in` and `out` do not overlap.
    void process(const double* in, double* out, std::size_t count);

private:
    std::optional<CPartitionedConvolver> m_convolver;
    std::optional<CDirectHead> m_head;
};

} // namespace qrb
