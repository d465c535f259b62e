// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/CSpectrumWindow.h"

#include <cmath>
#include <emmintrin.h>
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
    constexpr std::size_t kPairs = kLanes / 2;
    const std::size_t half = m_size / 2;
    const __m128d middle = _mm_set1_pd(0.5 * m_scale);
    const __m128d curve = _mm_set1_pd(m_curve);
    __m128d y[kPairs];
    __m128d step[kPairs];
    for (std::size_t i = 0; i < kPairs; ++i) {
        y[i] = _mm_loadu_pd(m_first.data() + 2 * i);
        step[i] = _mm_loadu_pd(m_firstStep.data() + 2 * i);
    }
    frame[half] *= m_scale;
    for (std::size_t n = 0; n < half; n += kLanes) {
        for (std::size_t i = 0; i < kPairs; ++i) {
            const __m128d window = _mm_add_pd(middle, y[i]);
            double* const rising = frame + n + 2 * i;
            _mm_storeu_pd(rising, _mm_mul_pd(_mm_loadu_pd(rising), window));
            if (n + i > 0) {
                double* const falling = frame + (m_size - n - 2 * i - 1);
                const __m128d turned = _mm_shuffle_pd(window, window, 1);
                _mm_storeu_pd(falling, _mm_mul_pd(_mm_loadu_pd(falling), turned));
            } else { // value 0 has no twin
                frame[m_size - 1] *= _mm_cvtsd_f64(_mm_unpackhi_pd(window, window));
            }
            y[i] = _mm_add_pd(y[i], step[i]);
            step[i] = _mm_sub_pd(step[i], _mm_mul_pd(curve, y[i]));
        }
    }
}

} // namespace qrb
