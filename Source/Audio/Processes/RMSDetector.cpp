// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/RMSDetector.h"

#include <emmintrin.h>

namespace qrb {

namespace {

namespace pairs {

#include "Audio/Processes/LanePairs.inl"

#include "Audio/Processes/RMSLoops.inl"

} // namespace pairs

} // namespace

void detectRMS(bool isTwoPole, std::span<const CRMSLine> lines, std::size_t count, EVectorWidth width)
{
    runInPlaces<CRMSLine, FRMSKernel>(lines, width, pairs::kKernels, wideRMSKernels, isTwoPole ? 1 : 0, count);
}

void detectRMS(bool isTwoPole, std::span<const CRMSLine> lines, std::size_t count)
{
    detectRMS(isTwoPole, lines, count, widestVectors());
}

} // namespace qrb
