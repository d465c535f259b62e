// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>

namespace qrb {

/// Longest UTF-8 sequence.
inline constexpr std::size_t kMaxUtf8Bytes = 4;

/// Length of the sequence that `lead` starts, 1 to 4; 0 for a byte that starts none.
[[nodiscard]] std::size_t utf8SequenceLength(std::uint8_t lead);

/// Character of a sequence of `length` bytes. False if a byte behind the first does not continue it, or the result is no
/// character (surrogates, beyond 0x10FFFF, longer than need be).
[[nodiscard]] bool utf8Decode(const std::uint8_t* bytes, std::size_t length, char32_t& character);

/// Writes `character` and returns the count of bytes, 1 to 4; 0 for what is no character.
std::size_t utf8Encode(char32_t character, std::uint8_t (&bytes)[kMaxUtf8Bytes]);

} // namespace qrb
