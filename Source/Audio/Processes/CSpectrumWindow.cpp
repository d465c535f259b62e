// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/CSpectrumWindow.h"

#include <cmath>
#include <numbers>

namespace qrb {

namespace {

constexpr double kPeakGain = 2.0 * std::numbers::sqrt2; // over the size

} // namespace

void CSpectrumWindow::setSize(std::size_t size)
{
    const double angle = 2.0 * std::numbers::pi / static_cast<double>(size);
    const double stride = angle * kLanes;
    m_size = size;
    m_scale = kPeakGain / static_cast<double>(size);
    // y(n + k) - 2 y(n) + y(n - k) = -4 sin^2(k w / 2) y(n): as a sum of steps it keeps all digits of small angles.
    const double half = std::sin(0.5 * stride);
    m_curve = 4.0 * half * half;
    for (std::size_t lane = 0; lane < kLanes; ++lane) {
        const double at = angle * static_cast<double>(lane);
        m_first[lane] = -0.5 * m_scale * std::cos(at);
        // cos(a + s) - cos(a) as a product, for the same reason
        m_firstStep[lane] = m_scale * std::sin(at + 0.5 * stride) * half;
    }
}

void CSpectrumWindow::apply(double* frame) const
{
    // The window is the same from both ends, so its first half serves both.
    const std::size_t half = m_size / 2;
    std::array<double, kLanes> y = m_first;
    std::array<double, kLanes> step = m_firstStep;
    frame[half] *= m_scale;
    for (std::size_t n = 0; n < half; n += kLanes) {
        double* const rising = frame + n;
        double* const falling = frame + (m_size - n);
        std::array<double, kLanes> window;
        for (std::size_t lane = 0; lane < kLanes; ++lane) {
            window[lane] = 0.5 * m_scale + y[lane];
            y[lane] += step[lane];
            step[lane] -= m_curve * y[lane];
        }
        for (std::size_t lane = 0; lane < kLanes; ++lane)
            rising[lane] *= window[lane];
        for (std::size_t lane = n == 0 ? 1 : 0; lane < kLanes; ++lane)
            *(falling - lane) *= window[lane];
    }
}

} // namespace qrb
