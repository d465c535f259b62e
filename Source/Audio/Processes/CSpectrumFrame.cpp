// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/CSpectrumFrame.h"

#include "Platform/CRealFFTPlan.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace qrb {

bool CSpectrumFrame::transform(const platform::CRealFFTPlan& plan, const double* samples, double* room)
{
    const std::size_t size = plan.size();
    constexpr std::uintptr_t kBytes = kAlignment * sizeof(double);
    const auto address = reinterpret_cast<std::uintptr_t>(room + kMargin);
    double* const first = room + kMargin + (kBytes - address % kBytes) % kBytes / sizeof(double);
    double* const last = first + size;
    plan.forward(samples, first);
    if (!std::isfinite(first[0])) // any bad sample is in all terms
        return false;
    // Terms of real samples go on as their conjugates beyond both ends.
    first[-2] = first[2];
    first[-1] = -first[3];
    last[2] = last[-2];
    last[3] = -last[-1];
    std::fill(last + 4, last + 2 * kStep + kMargin, 0.0);
    m_terms = first;
    return true;
}

} // namespace qrb
