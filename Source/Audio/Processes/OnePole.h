// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cmath>
#include <numbers>

namespace qrb {

/// Coefficient c of the smoother s += (x - s) * c whose power falls to one half at `w` radians a sample.
///
/// With x = 2 - cos w it is 1 - x + sqrt(x^2 - 1), written so that a low corner keeps all its digits.
[[nodiscard]] inline double onePoleCoefficient(double w)
{
    const double half = std::sin(0.5 * w);
    const double excess = 2.0 * half * half;
    return std::sqrt(excess * (excess + 2.0)) - excess;
}

/// The same for a corner in hertz.
[[nodiscard]] inline double onePoleCoefficient(double frequency, double sampleRate)
{
    return onePoleCoefficient(2.0 * std::numbers::pi * frequency / sampleRate);
}

} // namespace qrb
