// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/Render/CHostBuffers.h"

namespace render {

void CHostBuffers::setShape(int channelCount, std::size_t frames, bool useDouble)
{
    channels = channelCount;
    isDouble = useDouble;
    const auto count = static_cast<std::size_t>(channelCount);
    doubles.assign(isDouble ? count : 0, std::vector<double>(frames));
    floats.assign(isDouble ? 0 : count, std::vector<float>(frames));
    pointers.resize(count);
    for (std::size_t channel = 0; channel < count; ++channel)
        pointers[channel] = isDouble ? static_cast<void*>(doubles[channel].data()) : floats[channel].data();
}

void CHostBuffers::take(std::span<const double> interleaved, std::size_t frames)
{
    const auto stride = static_cast<std::size_t>(channels);
    for (std::size_t channel = 0; channel < stride; ++channel)
        for (std::size_t frame = 0; frame < frames; ++frame) {
            const double sample = interleaved[frame * stride + channel];
            if (isDouble)
                doubles[channel][frame] = sample;
            else
                floats[channel][frame] = static_cast<float>(sample);
        }
}

void CHostBuffers::give(std::vector<double>& interleaved, std::size_t frames) const
{
    const auto stride = static_cast<std::size_t>(channels);
    interleaved.resize(frames * stride);
    for (std::size_t channel = 0; channel < stride; ++channel)
        for (std::size_t frame = 0; frame < frames; ++frame)
            interleaved[frame * stride + channel] =
                isDouble ? doubles[channel][frame] : static_cast<double>(floats[channel][frame]);
}

} // namespace render
