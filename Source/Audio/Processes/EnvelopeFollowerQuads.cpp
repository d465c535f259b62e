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

namespace octets {

#include "Audio/Processes/LaneOctets.inl"

#include "Audio/Processes/FollowerLoops.inl"

} // namespace octets

#pragma GCC pop_options

} // namespace

CWideKernels<FFollowerKernel> wideFollowerKernels()
{
    return {quads::kKernels, octets::kKernels};
}

} // namespace qrb
