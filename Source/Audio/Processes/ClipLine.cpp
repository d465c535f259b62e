// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/ClipLine.h"

#include <emmintrin.h>

#include <cstddef>

namespace qrb {

void clipLine(std::span<const double> in, double limit, std::span<double> out)
{
    const __m128d upper = _mm_set1_pd(limit);
    const __m128d lower = _mm_set1_pd(-limit);
    // These take their second operand where the first is no number.
    const auto clip = [upper, lower](__m128d x) { return _mm_max_pd(_mm_min_pd(x, upper), lower); };
    std::size_t i = 0;
    for (; i + 2 <= in.size(); i += 2)
        _mm_storeu_pd(&out[i], clip(_mm_loadu_pd(&in[i])));
    if (i < in.size())
        _mm_store_sd(&out[i], clip(_mm_load_sd(&in[i])));
}

} // namespace qrb
