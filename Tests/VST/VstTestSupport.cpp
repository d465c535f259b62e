// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tests/VST/VstTestSupport.h"

#include <random>

CChannels makeNoise(std::size_t channels, std::size_t frames, std::uint32_t seed)
{
    std::mt19937 engine(seed);
    CChannels out(channels, std::vector<double>(frames));
    for (std::vector<double>& channel : out) {
        for (double& sample : channel)
            sample = static_cast<double>(static_cast<float>(engine()) / 4294967296.0F - 0.5F);
    }
    return out;
}

double energyOf(const CChannels& channels)
{
    double sum = 0.0;
    for (const std::vector<double>& channel : channels) {
        for (const double sample : channel)
            sum += sample * sample;
    }
    return sum;
}
