// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Processes/VectorWidth.h"

#include <algorithm>
#include <cstddef>
#include <span>

namespace qrb {

/// Runs loops that have places for two or for four lines on any number of lines. Places left over take the last line
/// once more, which does the same twice. `quadKernel()` is asked only where the processor has the vectors.
template <typename T, typename TKernel, typename TQuads>
void runInPlaces(std::span<const T> lines, EVectorWidth width, TKernel pairKernel, TQuads quadKernel, std::size_t count)
{
    constexpr std::size_t kMost = 4;
    while (!lines.empty()) {
        // Two lines in four places would only wait longer for divisions and roots.
        const bool isWide = width == EVectorWidth::quads && lines.size() > 2;
        const std::size_t taken = std::min<std::size_t>(lines.size(), isWide ? kMost : 2);
        T places[kMost];
        for (std::size_t i = 0; i < kMost; ++i)
            places[i] = lines[std::min(i, taken - 1)];
        (isWide ? quadKernel() : pairKernel)(places, count);
        lines = lines.subspan(taken);
    }
}

} // namespace qrb
