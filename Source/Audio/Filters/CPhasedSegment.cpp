// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Filters/CPhasedSegment.h"

#include "Audio/Filters/PartitionSpectra.h"
#include "Core/CArray.h"
#include "Platform/CBlockTransformPlan.h"

#include <algorithm>

namespace qrb {

namespace {

/// Every other tap from `first` on, behind `zeros` zeros.
CArray<double> everyOther(std::span<const double> taps, std::size_t first, std::size_t zeros)
{
    CArray<double> phase;
    phase.resize(zeros);
    for (std::size_t k = first; k < taps.size(); k += 2)
        phase.append(taps[k]);
    return phase;
}

} // namespace

CPhasedSegment::CPhasedSegment(const platform::CBlockTransformPlan& plan, std::span<const double> taps,
                               const CConvolverKernels& kernels)
    : m_plan(&plan), m_kernels(&kernels),
      m_block(plan.block()), m_shape{m_block / kSpectrumTileBins, (taps.size() / 2 + m_block) / m_block},
      m_evenTaps(makePartitionSpectra(plan, everyOther(taps, 0, 0).span(), m_shape.count, kernels)),
      m_oddTaps(makePartitionSpectra(plan, everyOther(taps, 1, 0).span(), m_shape.count, kernels)),
      m_lateOddTaps(makePartitionSpectra(plan, everyOther(taps, 1, 1).span(), m_shape.count, kernels))
{
    for (CInput* input : {&m_even, &m_odd}) {
        input->frame = CAlignedSamples(2 * m_block);
        input->history = CAlignedSamples(2 * m_block * m_shape.count);
    }
    for (COutput& output : m_outputs)
        output.block = CAlignedSamples(m_block);
}

void CPhasedSegment::prime(double evenLevel, double oddLevel, double* work)
{
    m_newest = 0;
    m_position = 0;
    m_incoming = 0;
    m_even.frame.fill(evenLevel);
    m_odd.frame.fill(oddLevel);
    for (CInput* input : {&m_even, &m_odd})
        fillSpectra(*m_plan, input->frame.data(), m_shape.count, *m_kernels, work, input->history);
    m_hasOdd = false;
    m_oddBlocks = oddLevel == 0.0 ? 0 : m_shape.count + 1;
    for (COutput& output : m_outputs)
        output.isMade = false;
}

void CPhasedSegment::process(const CPhasesIn& in, const CPhasesOut& out, std::size_t count, bool isAdded, double* work)
{
    double* const wanted[] = {out.even, out.odd};
    for (std::size_t done = 0; done < count;) {
        const std::size_t length = std::min(count - done, m_block - m_position);
        take(in, done, length);
        for (std::size_t phase = 0; phase < 2; ++phase) {
            if (wanted[phase] == nullptr)
                continue;
            if (!m_outputs[phase].isMade)
                make(phase, work);
            give(m_outputs[phase], wanted[phase] + done, length, isAdded);
        }
        done += length;
        m_position += length;
        if (m_position == m_block)
            runBlock(work);
    }
}

void CPhasedSegment::take(const CPhasesIn& in, std::size_t from, std::size_t length)
{
    const std::size_t at = m_incoming + m_position;
    std::copy_n(in.even + from, length, m_even.frame.data() + at);
    if (in.odd != nullptr) {
        std::copy_n(in.odd + from, length, m_odd.frame.data() + at);
        m_hasOdd = true;
    } else if (m_hasOdd || m_oddBlocks != 0) {
        std::fill_n(m_odd.frame.data() + at, length, 0.0);
    }
}

void CPhasedSegment::give(const COutput& output, double* to, std::size_t length, bool isAdded) const
{
    const double* ready = output.block.data() + m_position;
    if (isAdded)
        std::transform(to, to + length, ready, to, [](double sum, double sample) { return sum + sample; });
    else
        std::copy_n(ready, length, to);
}

void CPhasedSegment::transform(CInput& input, double* work)
{
    m_kernels->transform(*m_plan, input.frame.data() + m_block - m_incoming, input.frame.data() + m_incoming, work,
                         input.history.data() + m_newest * kSpectrumTile, m_shape.count * kSpectrumTile);
}

void CPhasedSegment::make(std::size_t phase, double* work)
{
    COutput& output = m_outputs[phase];
    const bool isOdd = phase != 0;
    const CAlignedSamples& tapsOfEven = isOdd ? m_oddTaps : m_evenTaps;
    const CAlignedSamples& tapsOfOdd = isOdd ? m_evenTaps : m_lateOddTaps;
    m_kernels->sumProducts(m_shape, m_even.history.data(), m_newest, tapsOfEven.data(), work, false);
    if (m_oddBlocks != 0)
        m_kernels->sumProducts(m_shape, m_odd.history.data(), m_newest, tapsOfOdd.data(), work, true);
    m_kernels->transformBack(*m_plan, work, output.block.data());
    output.isMade = true;
}

void CPhasedSegment::runBlock(double* work)
{
    m_newest = (m_newest == 0 ? m_shape.count : m_newest) - 1;
    transform(m_even, work);
    if (m_hasOdd || m_oddBlocks != 0)
        transform(m_odd, work);
    // A block is heard in the frame behind its own too, and in each for as long as the ring is.
    m_oddBlocks = m_hasOdd ? m_shape.count + 1 : m_oddBlocks - std::min<std::size_t>(m_oddBlocks, 1);
    m_hasOdd = false;
    m_position = 0;
    m_incoming = m_block - m_incoming;
    for (COutput& output : m_outputs)
        output.isMade = false;
}

} // namespace qrb
