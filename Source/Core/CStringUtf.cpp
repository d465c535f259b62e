// SPDX-License-Identifier: GPL-3.0-or-later
// Conversions of CString from and to the Unicode transfer forms.
#include "Core/CString.h"

#include <algorithm>

namespace qrb {

namespace {

bool isHighSurrogate(char16_t unit) noexcept
{
    return (unit & 0xFC00) == 0xD800;
}

bool isLowSurrogate(char16_t unit) noexcept
{
    return (unit & 0xFC00) == 0xDC00;
}

struct CDecoded {
    char32_t codePoint = 0;
    std::size_t byteCount = 0; // 0: no sequence starts here
};

/// Decodes the sequence at the start of `bytes`, which are not empty. Overlong forms and values above 0x10FFFF are none.
CDecoded decodeSequence(std::string_view bytes) noexcept
{
    const auto first = static_cast<unsigned char>(bytes[0]);
    if (first < 0x80) {
        return {first, 1};
    }
    const std::size_t count = first >= 0xF8 ? 0 : first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : first >= 0xC0 ? 2 : 0;
    if (count == 0 || count > bytes.size()) {
        return {};
    }
    char32_t codePoint = first & (0x7FU >> count);
    for (std::size_t i = 1; i < count; ++i) {
        const auto next = static_cast<unsigned char>(bytes[i]);
        if ((next & 0xC0) != 0x80) {
            return {};
        }
        codePoint = codePoint << 6 | (next & 0x3FU);
    }
    constexpr char32_t kLowest[] = {0, 0, 0x80, 0x800, 0x10000};
    return codePoint < kLowest[count] || codePoint > 0x10FFFF ? CDecoded{} : CDecoded{codePoint, count};
}

void encode(std::string& out, char32_t codePoint)
{
    const auto put = [&](char32_t byte) { out.push_back(static_cast<char>(static_cast<unsigned char>(byte))); };
    if (codePoint < 0x80) {
        put(codePoint);
    } else if (codePoint < 0x800) {
        put(0xC0 | codePoint >> 6);
        put(0x80 | (codePoint & 0x3F));
    } else if (codePoint < 0x10000) {
        put(0xE0 | codePoint >> 12);
        put(0x80 | (codePoint >> 6 & 0x3F));
        put(0x80 | (codePoint & 0x3F));
    } else {
        put(0xF0 | codePoint >> 18);
        put(0x80 | (codePoint >> 12 & 0x3F));
        put(0x80 | (codePoint >> 6 & 0x3F));
        put(0x80 | (codePoint & 0x3F));
    }
}

} // namespace

CString CString::fromUtf8(std::string_view utf8)
{
    const auto isAscii = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
    if (std::all_of(utf8.begin(), utf8.end(), isAscii)) {
        return CString(utf8);
    }
    CString text;
    text.reserve(utf8.size());
    for (std::size_t pos = 0; pos < utf8.size();) {
        const CDecoded decoded = decodeSequence(utf8.substr(pos));
        if (decoded.byteCount == 0) {
            ++pos;
            continue;
        }
        if (!text.m_isWide && decoded.codePoint > 0xFF) {
            text.widen();
            text.reserve(text.m_length + (utf8.size() - pos));
        }
        text.appendCodePoint(decoded.codePoint);
        pos += decoded.byteCount;
    }
    return text;
}

CString CString::fromUtf16(std::u16string_view units)
{
    CString text;
    text.m_isWide = std::any_of(units.begin(), units.end(), [](char16_t unit) { return unit > 0xFF; });
    text.makeRoom(units.size());
    if (text.m_isWide) {
        std::copy(units.begin(), units.end(), text.wideBuffer());
    } else {
        std::transform(units.begin(), units.end(), text.buffer(),
                       [](char16_t unit) { return static_cast<char>(static_cast<unsigned char>(unit)); });
    }
    text.setLength(units.size());
    return text;
}

std::string CString::toUtf8() const
{
    std::string out;
    out.reserve(m_length);
    for (std::size_t i = 0; i < m_length; ++i) {
        const char16_t unit = at(i);
        if (isHighSurrogate(unit) && i + 1 < m_length && isLowSurrogate(at(i + 1))) {
            encode(out, 0x10000 + ((static_cast<char32_t>(unit) & 0x3FF) << 10) + (at(i + 1) & 0x3FFU));
            ++i;
        } else if (!isHighSurrogate(unit) && !isLowSurrogate(unit)) {
            encode(out, unit);
        }
    }
    return out;
}

} // namespace qrb
