// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/SpectrumFrame.h"

#include "Audio/Processes/CSpectrumWindow.h"
#include "Platform/CRealFFTPlan.h"

#include <cmath>
#include <cstddef>
#include <emmintrin.h>

namespace qrb {

namespace {

/// Replaces the terms [re 0, im 0, re 1, im 1, ...] by their magnitudes, which take the first half of their place.
void takeMagnitudes(double* terms, std::size_t count)
{
    std::size_t i = 0;
    for (; i + 2 <= count; i += 2) {
        const __m128d first = _mm_loadu_pd(terms + 2 * i);
        const __m128d second = _mm_loadu_pd(terms + 2 * i + 2);
        const __m128d a = _mm_mul_pd(first, first);
        const __m128d b = _mm_mul_pd(second, second);
        _mm_storeu_pd(terms + i, _mm_sqrt_pd(_mm_add_pd(_mm_unpacklo_pd(a, b), _mm_unpackhi_pd(a, b))));
    }
    for (; i < count; ++i)
        terms[i] = std::sqrt(terms[2 * i] * terms[2 * i] + terms[2 * i + 1] * terms[2 * i + 1]);
}

} // namespace

bool findMagnitudes(const CSpectrumWindow& window, const platform::CRealFFTPlan& plan, double* frame, double* terms)
{
    window.apply(frame);
    plan.forward(frame, terms);
    if (!std::isfinite(terms[0])) // any bad sample is in all terms
        return false;
    takeMagnitudes(terms, window.size() / 2 + 1);
    return true;
}

} // namespace qrb
