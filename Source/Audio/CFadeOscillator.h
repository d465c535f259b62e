// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cmath>
#include <numbers>

namespace qrb {

/// Recursive cosine of a raised-cosine fade: `next` yields s = 0.5 cos(pi i / length) for i = 0, 1, ...
///
/// The weights are 0.5 + s for what fades out and 0.5 - s for what fades in. The state is carried from block to block,
/// so a fade gives the same bits however its blocks are cut.
class CFadeOscillator {
public:
    /// Back to full weight of the old signal; `length` in samples, at least 1.
    void start(int length)
    {
        const double w = std::numbers::pi / (length < 1 ? 1 : length);
        m_factor = 2.0 * std::cos(w);
        m_current = 0.5;
        m_previous = 0.5 * std::cos(w);
    }

    double next()
    {
        const double s = m_current;
        m_current = m_factor * s - m_previous;
        m_previous = s;
        return s;
    }

private:
    double m_factor = 2.0;
    double m_current = 0.5;
    double m_previous = 0.5;
};

} // namespace qrb
