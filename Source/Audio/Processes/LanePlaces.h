// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/VectorWidth.h"

#include <algorithm>
#include <cstddef>
#include <span>

namespace qrb {

/// The forms of a loop that runs two, four, six and eight lines side by side, for the wider processor.
template <typename TKernel>
struct CWideKernels {
    std::span<const TKernel> pairs;
    std::span<const TKernel> quads;
    std::span<const TKernel> sextets;
    std::span<const TKernel> octets;
};

/// Runs form `form` of a loop on any number of lines, with places for two, four, six or eight of them at a time. Places left
/// over take the last line once more, which does the same twice. `wideKernels()` is asked only where the processor has
/// the vectors.
template <typename T, typename TKernel>
void runInPlaces(std::span<const T> lines, EVectorWidth width, std::span<const TKernel> pairs,
                 CWideKernels<TKernel> (*wideKernels)(), std::size_t form, std::size_t count)
{
    constexpr std::size_t kMost = 8;
    while (!lines.empty()) {
        TKernel kernel = pairs[form];
        std::size_t placeCount = 2;
        // Lines in more places than they need would only wait longer for divisions and roots.
        if (width == EVectorWidth::quads) {
            const CWideKernels<TKernel> wide = wideKernels();
            placeCount = std::min((lines.size() + 1) / 2 * 2, kMost);
            kernel = (placeCount == kMost ? wide.octets
                      : placeCount == 6   ? wide.sextets
                      : placeCount == 4   ? wide.quads
                                          : wide.pairs)[form];
        }
        const std::size_t taken = std::min(lines.size(), placeCount);
        if (taken == placeCount) {
            kernel(lines.data(), count);
        } else {
            T places[kMost];
            for (std::size_t i = 0; i < placeCount; ++i)
                places[i] = lines[std::min(i, taken - 1)];
            kernel(places, count);
        }
        lines = lines.subspan(taken);
    }
}

} // namespace qrb
