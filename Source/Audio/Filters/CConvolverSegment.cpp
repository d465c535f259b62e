// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Filters/CConvolverSegment.h"

#include "Audio/Filters/PartitionSpectra.h"
#include "Platform/CBlockTransformPlan.h"

#include <algorithm>
#include <numeric>

namespace qrb {

CConvolverSegment::CConvolverSegment(const platform::CBlockTransformPlan& plan, std::span<const double> taps,
                                     const CConvolverKernels& kernels)
    : m_plan(&plan), m_kernels(&kernels),
      m_block(plan.block()), m_shape{m_block / kSpectrumTileBins, (taps.size() + m_block - 1) / m_block},
      m_frame(2 * m_block), m_output(m_block), m_taps(makePartitionSpectra(plan, taps, m_shape.count, kernels)),
      m_history(2 * m_block * m_shape.count), m_tapSum(std::accumulate(taps.begin(), taps.end(), 0.0))
{
}

void CConvolverSegment::prime(double level, double* work)
{
    m_newest = 0;
    m_position = 0;
    m_incoming = 0;
    m_frame.fill(level);
    m_output.fill(level * m_tapSum);
    fillSpectra(*m_plan, m_frame.data(), m_shape.count, *m_kernels, work, m_history);
}

void CConvolverSegment::process(const double* in, double* out, std::size_t count, bool isAdded, double* work)
{
    while (count != 0) {
        const std::size_t length = std::min(count, m_block - m_position);
        const double* ready = m_output.data() + m_position;
        std::copy_n(in, length, m_frame.data() + m_incoming + m_position);
        if (isAdded)
            std::transform(out, out + length, ready, out, [](double sum, double sample) { return sum + sample; });
        else
            std::copy_n(ready, length, out);
        in += length;
        out += length;
        count -= length;
        m_position += length;
        if (m_position == m_block) {
            runBlock(work);
            m_position = 0;
        }
    }
}

void CConvolverSegment::runBlock(double* work)
{
    m_newest = (m_newest == 0 ? m_shape.count : m_newest) - 1;
    const double* newer = m_frame.data() + m_incoming;
    m_incoming = m_block - m_incoming;
    m_kernels->transform(*m_plan, m_frame.data() + m_incoming, newer, work, m_history.data() + m_newest * kSpectrumTile,
                         m_shape.count * kSpectrumTile);
    m_kernels->sumProducts(m_shape, m_history.data(), m_newest, m_taps.data(), work, false);
    m_kernels->transformBack(*m_plan, work, m_output.data());
}

} // namespace qrb
