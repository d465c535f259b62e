// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Filters/CPartitionedConvolver.h"

#include "Audio/Filters/PartitionSearch.h"
#include "Platform/CBlockTransformPool.h"

#include <algorithm>
#include <bit>

namespace qrb {

CPartitionedConvolver::CPartitionedConvolver(std::span<const double> taps, int log2Block,
                                             platform::CBlockTransformPool& plans, const CConvolverKernels& kernels)
{
    const int firstLevel = std::clamp(log2Block, kMinLog2Block, kMaxLog2Block) - kMinLog2Block;
    const CPartitionRuns runs = findPartitions(taps.size(), firstLevel);
    for (const CPartitionRun& run : runs) {
        const std::size_t block = partitionBlock(run.level);
        const std::size_t covered = std::min(run.count * block, taps.size());
        const auto log2Length = static_cast<unsigned>(std::countr_zero(block));
        m_segments.emplace(plans.plan(log2Length), taps.first(covered), kernels);
        taps = taps.subspan(covered);
    }
    m_work = CAlignedSamples(2 * partitionBlock(runs.back().level));
}

void CPartitionedConvolver::process(const double* in, double* out, std::size_t count)
{
    if (count == 0)
        return;
    bool isAdded = false;
    for (CConvolverSegment& segment : m_segments) {
        if (m_isFirstBlock)
            segment.prime(in[0], m_work.data());
        segment.process(in, out, count, isAdded, m_work.data());
        isAdded = true;
    }
    m_isFirstBlock = false;
}

} // namespace qrb
