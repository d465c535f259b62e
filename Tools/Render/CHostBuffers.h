// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace render {

/// Samples of one host block, in the format the host is told to have: one array a channel.
struct CHostBuffers {
    void setShape(int channelCount, std::size_t frames, bool useDouble);
    void take(std::span<const double> interleaved, std::size_t frames);
    void give(std::vector<double>& interleaved, std::size_t frames) const;

    int channels = 0;
    bool isDouble = false;
    std::vector<std::vector<double>> doubles;
    std::vector<std::vector<float>> floats;
    std::vector<void*> pointers;
};

} // namespace render
