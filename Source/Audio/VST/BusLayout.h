// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <pluginterfaces/vst/vsttypes.h>

namespace qrb {

struct CPluginProject;

/// Arrangements of the audio buses, as masks of speakers.
struct CBusLayout {
    Steinberg::Vst::SpeakerArrangement input = 0x3;
    Steinberg::Vst::SpeakerArrangement output = 0x3;
    Steinberg::Vst::SpeakerArrangement sidechain = 0x3;

    bool operator==(const CBusLayout&) const = default;
};

[[nodiscard]] int channelCountOf(Steinberg::Vst::SpeakerArrangement arrangement);
/// The arrangement for a count of channels; more than there is one for get the largest.
[[nodiscard]] Steinberg::Vst::SpeakerArrangement arrangementOf(int channelCount);
/// The nearest layout to a wish that the product can have.
[[nodiscard]] CBusLayout constrainLayout(const CBusLayout& wish, const CPluginProject& project);

} // namespace qrb
