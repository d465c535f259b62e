// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/EnvelopeFollower.h"

#include <immintrin.h>

namespace qrb {

namespace {

// Only what stands in this region is compiled for the wider processor. Functions that other files share must not be: the
// linker keeps one copy of them for all processors.
#pragma GCC push_options
#pragma GCC target("avx2")

namespace quads {

#include "Audio/Processes/LaneQuads.inl"

#include "Audio/Processes/FollowerLoops.inl"

} // namespace quads

namespace pairs {

#include "Audio/Processes/LanePairs.inl"

#include "Audio/Processes/FollowerLoops.inl"

} // namespace pairs

namespace sextets {

namespace first = quads;
namespace second = pairs;

#include "Audio/Processes/LaneTwins.inl"

#include "Audio/Processes/FollowerLoops.inl"

} // namespace sextets

namespace octets {

namespace first = quads;
namespace second = quads;

#include "Audio/Processes/LaneTwins.inl"

#include "Audio/Processes/FollowerLoops.inl"

} // namespace octets

#pragma GCC pop_options

} // namespace

CWideKernels<FFollowerKernel> wideFollowerKernels()
{
    return {pairs::kKernels, quads::kKernels, sextets::kKernels, octets::kKernels};
}

} // namespace qrb
