// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/RMSDetector.h"

#include "Audio/Processes/LanePlaces.h"

#include <emmintrin.h>

namespace qrb {

namespace {

namespace pairs {

constexpr std::size_t kLanes = 2;
using Lanes = double __attribute__((vector_size(16)));

[[gnu::always_inline]] inline Lanes rootOf(Lanes x)
{
    return _mm_sqrt_pd(x);
}

#include "Audio/Processes/RMSLoops.inl"

} // namespace pairs

} // namespace

void detectRMS(bool isTwoPole, std::span<const CRMSLine> lines, std::size_t count, EVectorWidth width)
{
    runInPlaces(
        lines, width, pairs::kKernels[isTwoPole ? 1 : 0], [&] { return quadRMSKernels()[isTwoPole ? 1 : 0]; }, count);
}

void detectRMS(bool isTwoPole, std::span<const CRMSLine> lines, std::size_t count)
{
    detectRMS(isTwoPole, lines, count, widestVectors());
}

} // namespace qrb
