// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CArray.h"

#include <cstddef>

namespace qrb {

/// Block sizes of a partitioned convolution: level k has blocks of 16 << k samples.
inline constexpr int kPartitionLevelCount = 11;

[[nodiscard]] constexpr std::size_t partitionBlock(int level)
{
    return std::size_t{16} << level;
}

/// `count` partitions in a row of one level.
struct CPartitionRun {
    int level = 0;
    std::size_t count = 0;

    friend bool operator==(const CPartitionRun&, const CPartitionRun&) = default;
};

using CPartitionRuns = CArray<CPartitionRun, 6>;

/// The runs that convolve with at least one tap for the least processor time, beginning at `firstLevel` and rising in
/// level. Where a run begins, the taps before it make up the difference of its block and the first block: a run is late
/// by one of its own blocks, so its first tap is then just in time.
[[nodiscard]] CPartitionRuns findPartitions(std::size_t tapCount, int firstLevel);

} // namespace qrb
