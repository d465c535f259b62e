// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/Render/CLevelStats.h"

#include <algorithm>
#include <cmath>

namespace render {

namespace {

double toDb(double level)
{
    return 20.0 * std::log10(level + 1e-20);
}

} // namespace

void CLevelStats::add(std::span<const double> samples)
{
    for (const double sample : samples) {
        m_peak = std::max(m_peak, std::abs(sample));
        m_squares += sample * sample;
    }
    m_count += samples.size();
}

double CLevelStats::peakDb() const
{
    return toDb(m_peak);
}

double CLevelStats::rmsDb() const
{
    return toDb(m_count == 0 ? 0.0 : std::sqrt(m_squares / static_cast<double>(m_count)));
}

} // namespace render
