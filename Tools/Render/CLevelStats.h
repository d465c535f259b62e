// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>

namespace render {

/// Peak and root mean square over all channels of a signal.
class CLevelStats {
public:
    void add(std::span<const double> samples);

    /// dB relative to full scale; silence reads -400.
    [[nodiscard]] double peakDb() const;
    [[nodiscard]] double rmsDb() const;

private:
    double m_peak = 0.0;
    double m_squares = 0.0;
    std::uint64_t m_count = 0;
};

} // namespace render
