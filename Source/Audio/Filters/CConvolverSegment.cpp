// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Filters/CConvolverSegment.h"

#include "Platform/CRealFFTPlan.h"

#include <algorithm>

namespace qrb {

CConvolverSegment::CConvolverSegment(const platform::CRealFFTPlan& plan, std::span<const double> taps,
                                     const CConvolverKernels& kernels)
    : m_plan(&plan), m_kernels(&kernels),
      m_block(plan.size() / 2), m_shape{m_block / kSpectrumTileBins, (taps.size() + m_block - 1) / m_block},
      m_frame(2 * m_block), m_output(2 * m_block), m_taps(2 * m_block * m_shape.count),
      m_history(2 * m_block * m_shape.count)
{
    CAlignedSamples piece(2 * m_block);
    CAlignedSamples terms(2 * m_block + 2);
    const double scale = 1.0 / static_cast<double>(2 * m_block);
    for (std::size_t j = 0; j < m_shape.count; ++j) {
        const std::span<const double> part = taps.subspan(j * m_block, std::min(m_block, taps.size() - j * m_block));
        piece.fill(0.0);
        std::ranges::transform(part, piece.data(), [scale](double tap) { return tap * scale; });
        plan.forward(piece.data(), terms.data());
        kernels.storeSpectrum(m_shape, terms.data(), m_taps.data(), j);
    }
}

void CConvolverSegment::prime(double level)
{
    m_newest = 0;
    m_position = 0;
    m_frame.fill(level);
    m_history.fill(0.0);
    // A constant frame has but its DC term.
    const double dc = level * static_cast<double>(2 * m_block);
    double tapsDC = 0.0;
    for (std::size_t j = 0; j < m_shape.count; ++j) {
        m_history.data()[j * kSpectrumTile] = dc;
        tapsDC += m_taps.data()[j * kSpectrumTile];
    }
    m_output.fill(dc * tapsDC);
}

void CConvolverSegment::process(const double* in, double* out, std::size_t count, bool isAdded, double* terms)
{
    while (count != 0) {
        const std::size_t length = std::min(count, m_block - m_position);
        const double* ready = m_output.data() + m_position;
        std::copy_n(in, length, m_frame.data() + m_position);
        if (isAdded)
            std::transform(out, out + length, ready, out, [](double sum, double sample) { return sum + sample; });
        else
            std::copy_n(ready, length, out);
        in += length;
        out += length;
        count -= length;
        m_position += length;
        if (m_position == m_block) {
            runBlock(terms);
            m_position = 0;
        }
    }
}

void CConvolverSegment::runBlock(double* terms)
{
    m_plan->forward(m_frame.data(), terms);
    m_newest = (m_newest == 0 ? m_shape.count : m_newest) - 1;
    m_kernels->storeSpectrum(m_shape, terms, m_history.data(), m_newest);
    m_kernels->sumProducts(m_shape, m_history.data(), m_newest, m_taps.data(), terms);
    m_plan->inverse(terms, m_output.data());
    std::copy_n(m_frame.data(), m_block, m_frame.data() + m_block);
}

} // namespace qrb
