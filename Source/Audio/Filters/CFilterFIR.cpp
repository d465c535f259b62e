// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Filters/CFilterFIR.h"

#include <algorithm>
#include <bit>

namespace qrb {

void CFilterFIR::setPartitioned(std::span<const double> taps, int log2Block, platform::CBlockTransformPool& plans)
{
    clear();
    if (!taps.empty())
        m_convolver.emplace(taps, log2Block, plans);
}

void CFilterFIR::setZeroLatency(std::span<const double> taps, platform::CBlockTransformPool& plans)
{
    clear();
    const std::size_t headTaps = std::min(taps.size(), kHeadTaps);
    if (headTaps != 0)
        m_head.emplace(taps.first(headTaps));
    if (taps.size() > headTaps)
        m_convolver.emplace(taps.subspan(headTaps), std::countr_zero(kHeadTaps), plans);
}

void CFilterFIR::clear()
{
    m_convolver.reset();
    m_head.reset();
}

void CFilterFIR::reset()
{
    if (m_convolver)
        m_convolver->reset();
    if (m_head)
        m_head->reset();
}

void CFilterFIR::process(const double* in, double* out, std::size_t count)
{
    if (m_convolver)
        m_convolver->process(in, out, count);
    if (m_head)
        m_head->process(in, out, count, m_convolver.has_value());
}

} // namespace qrb
