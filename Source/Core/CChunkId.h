// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace qrb {

/// Id of a persisted chunk: four ASCII characters as a little endian number, so that they stand in a file as they read.
[[nodiscard]] constexpr std::uint32_t chunkId(const char (&name)[5])
{
    std::uint32_t id = 0;
    for (int i = 3; i >= 0; --i)
        id = (id << 8) | static_cast<std::uint8_t>(name[i]);
    return id;
}

} // namespace qrb
