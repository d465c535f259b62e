// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace qrb {

/// Copies samples between buffers that don't overlap. In pieces, since the C library moves 4 kB and more by a string
/// instruction, which some processors take fifty times as long for where the target lies a few bytes behind the source
/// within their pages.
inline void copySamples(const double* from, std::size_t count, double* to)
{
    constexpr std::size_t kPiece = 256;
    for (std::size_t done = 0; done < count; done += kPiece)
        std::memcpy(to + done, from + done, std::min(kPiece, count - done) * sizeof(double));
}

} // namespace qrb
