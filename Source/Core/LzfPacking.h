// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CArray.h"

#include <cstdint>
#include <span>

namespace qrb {

/// Packed bytes of the LZF kind: a control byte, then what it tells of.
///
///     000LLLLL                    L + 1 bytes as they are
///     LLLooooo oooooooo           L + 2 bytes (L = 1 to 6) that stand o + 1 bytes back
///     111ooooo LLLLLLLL oooooooo  the same for L + 9 bytes
///
/// Packing is fast rather than tight. The same bytes always give the same packed bytes. Thread: any.
void packLZF(std::span<const std::uint8_t> data, CByteArray& packed);

/// False unless the packed bytes are sound and give exactly as many as there is room for.
[[nodiscard]] bool unpackLZF(std::span<const std::uint8_t> packed, std::span<std::uint8_t> data);

} // namespace qrb
