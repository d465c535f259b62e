// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/HostSamples.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

namespace qrb {

namespace {

/// Where a channel's samples lie in the host's buffers.
struct CPlace {
    int buffer;
    std::size_t first;
    std::size_t stride;
};

CPlace placeOf(const CHostBusFormat& format, int channel, int position)
{
    const auto begin = static_cast<std::size_t>(position);
    if (!format.isInterleaved)
        return {channel, begin, 1};
    const auto stride = static_cast<std::size_t>(format.channelCount);
    return {0, begin * stride + static_cast<std::size_t>(channel), stride};
}

/// No signal is as loud as this; squares and sums of such samples stay finite, so filters find back to rest.
constexpr double kMostAmplitude = 1e9;

/// What no signal can be must not get into a state: NaN and infinity are silence, absurd amplitudes are limited.
double admitted(double sample)
{
    const double amplitude = std::abs(sample);
    if (amplitude <= kMostAmplitude) [[likely]]
        return sample;
    return amplitude <= std::numeric_limits<double>::max() ? std::copysign(kMostAmplitude, sample) : 0.0;
}

template <typename T>
void readSamples(const void* buffer, const CPlace& place, int count, double* samples)
{
    const T* source = static_cast<const T*>(buffer) + place.first;
    for (int i = 0; i < count; ++i)
        samples[i] = admitted(static_cast<double>(source[static_cast<std::size_t>(i) * place.stride]));
}

template <typename T>
void writeSamples(void* buffer, const CPlace& place, int count, const double* samples)
{
    T* target = static_cast<T*>(buffer) + place.first;
    for (int i = 0; i < count; ++i)
        target[static_cast<std::size_t>(i) * place.stride] = samples != nullptr ? static_cast<T>(samples[i]) : T(0);
}

} // namespace

void readHostSamples(const CHostBusFormat& format, const void* const* buffers, int channel, int position, int count,
                     double* samples)
{
    const CPlace place = placeOf(format, channel, position);
    const bool hasBuffer = buffers != nullptr && channel < format.channelCount && buffers[place.buffer] != nullptr;
    if (!hasBuffer)
        std::fill_n(samples, count, 0.0);
    else if (format.isDouble)
        readSamples<double>(buffers[place.buffer], place, count, samples);
    else
        readSamples<float>(buffers[place.buffer], place, count, samples);
}

void writeHostSamples(const CHostBusFormat& format, void* const* buffers, int channel, int position, int count,
                      const double* samples)
{
    const CPlace place = placeOf(format, channel, position);
    if (channel >= format.channelCount || buffers[place.buffer] == nullptr)
        return;
    if (format.isDouble)
        writeSamples<double>(buffers[place.buffer], place, count, samples);
    else
        writeSamples<float>(buffers[place.buffer], place, count, samples);
}

} // namespace qrb
