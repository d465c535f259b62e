// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cmath>
#include <numbers>

namespace qrb {

/// Coefficient c of the smoother s += (x - s) * c whose power falls to one half at `frequency` (hertz).
[[nodiscard]] inline double onePoleCoefficient(double frequency, double sampleRate)
{
    const double x = 2.0 - std::cos(2.0 * std::numbers::pi * frequency / sampleRate);
    return 1.0 - x + std::sqrt(x * x - 1.0);
}

} // namespace qrb
