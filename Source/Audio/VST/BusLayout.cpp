// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/VST/BusLayout.h"

#include "Audio/CPluginProject.h"

#include <algorithm>
#include <bit>
#include <iterator>

namespace qrb {

using Steinberg::Vst::SpeakerArrangement;

namespace {

constexpr SpeakerArrangement kArrangements[] = {0x63F, 0x63B, 0x3F, 0x3B, 0x10B, 0x103, 0x3, 0x80000};
constexpr int kMaxSidechain = 2;

void constrainCount(SpeakerArrangement& arrangement, int limit)
{
    const int count = channelCountOf(arrangement);
    if (count < 1 || count > limit)
        arrangement = arrangementOf(limit);
}

} // namespace

int channelCountOf(SpeakerArrangement arrangement)
{
    return std::popcount(arrangement);
}

SpeakerArrangement arrangementOf(int channelCount)
{
    const auto* const found =
        std::find_if(std::begin(kArrangements), std::end(kArrangements),
                     [&](SpeakerArrangement arrangement) { return channelCountOf(arrangement) <= channelCount; });
    return found != std::end(kArrangements) ? *found : kArrangements[std::size(kArrangements) - 1];
}

CBusLayout constrainLayout(const CBusLayout& wish, const CPluginProject& project)
{
    CBusLayout layout = wish;
    constrainCount(layout.input, project.internalChannelCount);
    constrainCount(layout.output, project.internalChannelCount);
    if (channelCountOf(layout.sidechain) > kMaxSidechain)
        layout.sidechain = arrangementOf(kMaxSidechain);
    const int inputs = channelCountOf(layout.input);
    const int outputs = channelCountOf(layout.output);
    if (inputs == outputs)
        return layout;
    if (project.isSymmetricIO) {
        layout.input = layout.output = inputs > outputs ? layout.input : layout.output;
    } else if (inputs != 1 && outputs != 2) {
        layout.input = arrangementOf(1);
        layout.output = arrangementOf(2);
    }
    return layout;
}

} // namespace qrb
