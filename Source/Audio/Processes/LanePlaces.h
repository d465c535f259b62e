// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/VectorWidth.h"

#include <algorithm>
#include <cstddef>
#include <span>

namespace qrb {

/// The forms of a loop that runs four, and eight, lines side by side.
template <typename TKernel>
struct CWideKernels {
    std::span<const TKernel> quads;
    std::span<const TKernel> octets;
};

/// Runs form `form` of a loop on any number of lines, with places for two, four or eight of them at a time. Places left
/// over take the last line once more, which does the same twice. `wideKernels()` is asked only where the processor has
/// the vectors.
template <typename T, typename TKernel>
void runInPlaces(std::span<const T> lines, EVectorWidth width, std::span<const TKernel> pairs,
                 CWideKernels<TKernel> (*wideKernels)(), std::size_t form, std::size_t count)
{
    constexpr std::size_t kMost = 8;
    while (!lines.empty()) {
        TKernel kernel = pairs[form];
        std::size_t taken = std::min<std::size_t>(lines.size(), 2);
        // Two lines in more places than they need would only wait longer for divisions and roots.
        if (width == EVectorWidth::quads && lines.size() > 2) {
            const bool isTwofold = lines.size() > 4;
            taken = std::min<std::size_t>(lines.size(), isTwofold ? kMost : 4);
            kernel = (isTwofold ? wideKernels().octets : wideKernels().quads)[form];
        }
        T places[kMost];
        for (std::size_t i = 0; i < kMost; ++i)
            places[i] = lines[std::min(i, taken - 1)];
        kernel(places, count);
        lines = lines.subspan(taken);
    }
}

} // namespace qrb
