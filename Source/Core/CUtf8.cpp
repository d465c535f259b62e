// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CUtf8.h"

namespace qrb {

std::size_t utf8SequenceLength(std::uint8_t lead)
{
    if (lead < 0x80)
        return 1;
    if (lead < 0xC2) // continuation bytes, and leads of sequences that are longer than need be
        return 0;
    return lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : lead < 0xF5 ? 4 : 0;
}

bool utf8Decode(const std::uint8_t* bytes, std::size_t length, char32_t& character)
{
    if (length == 1) {
        character = bytes[0];
        return true;
    }
    character = bytes[0] & (0x7Fu >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if ((bytes[i] & 0xC0) != 0x80)
            return false;
        character = (character << 6) | (bytes[i] & 0x3Fu);
    }
    constexpr char32_t kSmallest[] = {0x80, 0x800, 0x10000};
    return character >= kSmallest[length - 2] && character <= 0x10FFFF && (character < 0xD800 || character > 0xDFFF);
}

std::size_t utf8Encode(char32_t character, std::uint8_t (&bytes)[kMaxUtf8Bytes])
{
    const auto tail = [character](unsigned shift) {
        return static_cast<std::uint8_t>(0x80u | ((character >> shift) & 0x3Fu));
    };
    if (character < 0x80) {
        bytes[0] = static_cast<std::uint8_t>(character);
        return 1;
    }
    if (character < 0x800) {
        bytes[0] = static_cast<std::uint8_t>(0xC0u | (character >> 6));
        bytes[1] = tail(0);
        return 2;
    }
    if (character >= 0xD800 && character <= 0xDFFF)
        return 0;
    if (character < 0x10000) {
        bytes[0] = static_cast<std::uint8_t>(0xE0u | (character >> 12));
        bytes[1] = tail(6);
        bytes[2] = tail(0);
        return 3;
    }
    if (character > 0x10FFFF)
        return 0;
    bytes[0] = static_cast<std::uint8_t>(0xF0u | (character >> 18));
    bytes[1] = tail(12);
    bytes[2] = tail(6);
    bytes[3] = tail(0);
    return 4;
}

} // namespace qrb
