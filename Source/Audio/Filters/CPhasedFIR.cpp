// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Filters/CPhasedFIR.h"

#include "Audio/Filters/CFilterFIR.h"
#include "Audio/Filters/PartitionSearch.h"
#include "Platform/CBlockTransformPool.h"

#include <algorithm>
#include <bit>

namespace qrb {

void CPhasedFIR::setPartitioned(std::span<const double> taps, int log2Block, platform::CBlockTransformPool& plans,
                                const CConvolverKernels& kernels)
{
    m_head.reset();
    m_segments.clear();
    m_isFirstBlock = true;
    const int first = std::clamp(log2Block, kMinLog2Block, CPartitionedConvolver::kMaxLog2Block);
    const CPartitionRuns runs = findPartitions(taps.size(), first - CPartitionedConvolver::kMinLog2Block);
    for (const CPartitionRun& run : runs) {
        const std::size_t block = partitionBlock(run.level);
        const std::size_t covered = std::min(run.count * block, taps.size());
        m_segments.emplace(plans.plan(static_cast<unsigned>(std::countr_zero(block / 2))), taps.first(covered),
                           kernels);
        taps = taps.subspan(covered);
    }
    m_work = CAlignedSamples(partitionBlock(runs.back().level));
}

void CPhasedFIR::setZeroLatency(std::span<const double> taps, platform::CBlockTransformPool& plans,
                                const CConvolverKernels& kernels)
{
    const std::size_t headTaps = std::min(taps.size(), CFilterFIR::kHeadTaps);
    m_segments.clear();
    if (taps.size() > headTaps)
        setPartitioned(taps.subspan(headTaps), std::countr_zero(CFilterFIR::kHeadTaps), plans, kernels);
    m_isFirstBlock = true;
    m_head.emplace(taps.first(headTaps), kernels);
}

void CPhasedFIR::process(const CPhasesIn& in, const CPhasesOut& out, std::size_t count)
{
    if (count == 0)
        return;
    const double evenLevel = in.even[0];
    const double oddLevel = in.odd == nullptr ? 0.0 : in.odd[0];
    bool isAdded = false;
    for (CPhasedSegment& segment : m_segments) {
        if (m_isFirstBlock)
            segment.prime(evenLevel, oddLevel, m_work.data());
        segment.process(in, out, count, isAdded, m_work.data());
        isAdded = true;
    }
    if (m_head) {
        if (m_isFirstBlock)
            m_head->prime(evenLevel, oddLevel);
        m_head->process(in, out, count, isAdded);
    }
    m_isFirstBlock = false;
}

} // namespace qrb
