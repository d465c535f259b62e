// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace render {

/// The speakers of the usual layout of 1 to 8 channels (mono to 7.1), a bit each as hosts of plug-ins count them; 0 for
/// no channels.
[[nodiscard]] inline std::uint64_t speakersOf(int channelCount)
{
    constexpr std::uint64_t kSpeakers[] = {0, 0x80000, 0x3, 0x7, 0x33, 0x37, 0x3F, 0x13F, 0x63F};
    return kSpeakers[channelCount < 0 ? 0 : channelCount > 8 ? 8 : channelCount];
}

} // namespace render
