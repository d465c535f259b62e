// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Filters/CPartitionedConvolver.h"

#include "Audio/Filters/PartitionSearch.h"
#include "Platform/CRealFFTPool.h"

#include <algorithm>
#include <bit>

namespace qrb {

CPartitionedConvolver::CPartitionedConvolver(std::span<const double> taps, int log2Block, platform::CRealFFTPool& plans,
                                             const CConvolverKernels& kernels)
{
    const int firstLevel = std::clamp(log2Block, kMinLog2Block, kMaxLog2Block) - kMinLog2Block;
    const CPartitionRuns runs = findPartitions(taps.size(), firstLevel);
    for (const CPartitionRun& run : runs) {
        const std::size_t block = partitionBlock(run.level);
        const std::size_t covered = std::min(run.count * block, taps.size());
        const auto log2Size = static_cast<unsigned>(std::countr_zero(2 * block));
        m_segments.emplace(plans.plan(log2Size), taps.first(covered), kernels);
        taps = taps.subspan(covered);
    }
    m_terms = CAlignedSamples(2 * partitionBlock(runs.back().level) + 2);
}

void CPartitionedConvolver::process(const double* in, double* out, std::size_t count)
{
    if (count == 0)
        return;
    bool isAdded = false;
    for (CConvolverSegment& segment : m_segments) {
        if (m_isFirstBlock)
            segment.prime(in[0]);
        segment.process(in, out, count, isAdded, m_terms.data());
        isAdded = true;
    }
    m_isFirstBlock = false;
}

} // namespace qrb
