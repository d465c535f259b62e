// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CPathText.h"

#include "Core/CArray.h"
#include "Core/CUtf16Cursor.h"
#include "Core/CUtf8.h"

namespace qrb {

namespace {

constexpr char32_t kByteEscape = 0xDC00; // plus a byte from 0x80 on

} // namespace

CString pathFromBytes(std::string_view bytes)
{
    CArray<char16_t, 256> units;
    const auto* data = reinterpret_cast<const std::uint8_t*>(bytes.data());
    for (std::size_t i = 0; i < bytes.size();) {
        const std::size_t length = utf8SequenceLength(data[i]);
        char32_t character = 0;
        if (length == 0 || length > bytes.size() - i || !utf8Decode(data + i, length, character)) {
            units.append(static_cast<char16_t>(kByteEscape + data[i]));
            ++i;
            continue;
        }
        if (character > 0xFFFF) {
            units.append(static_cast<char16_t>(0xD7C0 + (character >> 10)));
            character = 0xDC00 + (character & 0x3FF);
        }
        units.append(static_cast<char16_t>(character));
        i += length;
    }
    return CString::fromUtf16({units.data(), units.size()});
}

std::string pathToBytes(const CString& path)
{
    std::string bytes;
    CUtf16Cursor cursor(path);
    char32_t character = 0;
    while (cursor.next(character)) {
        std::uint8_t sequence[kMaxUtf8Bytes];
        if (character >= kByteEscape + 0x80 && character <= kByteEscape + 0xFF)
            bytes += static_cast<char>(character - kByteEscape);
        else
            bytes.append(reinterpret_cast<const char*>(sequence), utf8Encode(character, sequence));
    }
    return bytes;
}

} // namespace qrb
