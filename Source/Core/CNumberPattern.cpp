// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CNumberPattern.h"

#include "Core/CNumberText.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>

namespace qrb {

namespace {

constexpr int kMaxWidth = 512;
constexpr int kMaxPrecision = 60;

int readCount(const char*& at) noexcept
{
    int count = 0;
    for (; *at >= '0' && *at <= '9'; ++at) {
        count = std::min(count * 10 + (*at - '0'), kMaxWidth);
    }
    return count;
}

bool isUpper(char c) noexcept
{
    return c >= 'A' && c <= 'Z';
}

void toUpper(std::span<char> text) noexcept
{
    for (char& c : text) {
        c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    }
}

std::string_view signText(const CNumberPattern& pattern, bool isNegative) noexcept
{
    return isNegative ? "-" : pattern.hasPlus ? "+" : pattern.hasBlank ? " " : "";
}

} // namespace

CNumberPattern CNumberPattern::parse(const char*& at) noexcept
{
    CNumberPattern pattern;
    for (; *at != 0 && std::strchr("-+ 0#", *at) != nullptr; ++at) {
        pattern.isLeft |= *at == '-';
        pattern.hasPlus |= *at == '+';
        pattern.hasBlank |= *at == ' ';
        pattern.hasZeros |= *at == '0';
        pattern.isAlternate |= *at == '#';
    }
    pattern.isWidthArg = *at == '*';
    at += pattern.isWidthArg ? 1 : 0;
    pattern.width = readCount(at);
    if (*at == '.') {
        ++at;
        pattern.isPrecisionArg = *at == '*';
        at += pattern.isPrecisionArg ? 1 : 0;
        pattern.precision = readCount(at);
    }
    for (; *at != 0 && std::strchr("lhzjt", *at) != nullptr; ++at) {
        pattern.longCount += *at == 'l' ? 1 : *at == 'h' ? -1 : 2;
    }
    pattern.conversion = *at;
    at += *at != 0 ? 1 : 0;
    return pattern;
}

bool CNumberPattern::isFloat() const noexcept
{
    return conversion != 0 && std::strchr("fFeEgG", conversion) != nullptr;
}

bool CNumberPattern::isInteger() const noexcept
{
    return conversion != 0 && std::strchr("diuxX", conversion) != nullptr;
}

void CBoundedText::put(char c) noexcept
{
    if (m_length < m_room.size()) {
        m_room[m_length++] = c;
    }
}

void CBoundedText::put(std::string_view text) noexcept
{
    const std::size_t count = std::min(text.size(), m_room.size() - m_length);
    std::copy_n(text.data(), count, m_room.data() + m_length);
    m_length += count;
}

void CBoundedText::putPadded(const CNumberPattern& pattern, std::string_view sign, std::string_view body,
                             bool mayFillZeros) noexcept
{
    const auto wanted = static_cast<std::size_t>(std::max(pattern.width, 0));
    const std::size_t length = sign.size() + body.size();
    const std::size_t fill = wanted > length ? wanted - length : 0;
    const bool fillsZeros = pattern.hasZeros && mayFillZeros && !pattern.isLeft;
    for (std::size_t i = 0; i < fill && !pattern.isLeft && !fillsZeros; ++i) {
        put(' ');
    }
    put(sign);
    for (std::size_t i = 0; i < fill && fillsZeros; ++i) {
        put('0');
    }
    put(body);
    for (std::size_t i = 0; i < fill && pattern.isLeft; ++i) {
        put(' ');
    }
}

void CBoundedText::putFloat(const CNumberPattern& pattern, double value) noexcept
{
    const char kind = isUpper(pattern.conversion) ? static_cast<char>(pattern.conversion + 32) : pattern.conversion;
    const auto format = kind == 'f'   ? std::chars_format::fixed
                        : kind == 'e' ? std::chars_format::scientific
                                      : std::chars_format::general;
    const int precision = pattern.precision < 0 ? 6 : std::min(pattern.precision, kMaxPrecision);
    char digits[400]; // 309 digits, the point and the precision
    const char* end = std::to_chars(digits, digits + sizeof(digits), std::fabs(value), format, precision).ptr;
    const auto length = static_cast<std::size_t>(end - digits);
    if (isUpper(pattern.conversion)) {
        toUpper({digits, length});
    }
    const std::string_view sign = signText(pattern, std::signbit(value) && !std::isnan(value));
    putPadded(pattern, sign, {digits, length}, std::isfinite(value));
}

void CBoundedText::putInteger(const CNumberPattern& pattern, std::uint64_t magnitude, bool isNegative) noexcept
{
    const bool isHex = pattern.conversion == 'x' || pattern.conversion == 'X';
    const auto leastDigits = static_cast<std::size_t>(std::clamp(pattern.precision, 0, kMaxPrecision));
    char digits[kMaxPrecision + 24];
    char* first = digits + kMaxPrecision;
    const char* end = std::to_chars(first, digits + sizeof(digits), magnitude, isHex ? 16 : 10).ptr;
    while (static_cast<std::size_t>(end - first) < leastDigits) {
        *--first = '0';
    }
    const auto length = static_cast<std::size_t>(end - first);
    if (pattern.conversion == 'X') {
        toUpper({first, length});
    }
    const bool hasPrefix = isHex && pattern.isAlternate && magnitude != 0;
    const std::string_view prefix = !hasPrefix ? "" : pattern.conversion == 'X' ? "0X" : "0x";
    putPadded(pattern, isHex ? prefix : signText(pattern, isNegative), {first, length}, pattern.precision < 0);
}

void CBoundedText::putText(const CNumberPattern& pattern, const char* text) noexcept
{
    std::size_t length = 0;
    while (text[length] != 0 && (pattern.precision < 0 || length < static_cast<std::size_t>(pattern.precision))) {
        ++length;
    }
    putPadded(pattern, "", {text, length}, false);
}

CString formatPattern(const char* pattern, double value)
{
    char room[1024];
    CBoundedText text(room);
    for (const char* at = pattern; *at != 0;) {
        const char c = *at++;
        if (c != '%') {
            text.put(c);
            continue;
        }
        const CNumberPattern conversion = CNumberPattern::parse(at);
        const std::int64_t integer = roundHalfAway(value);
        if (conversion.conversion == '%') {
            text.put('%');
        } else if (conversion.isFloat()) {
            text.putFloat(conversion, value);
        } else if (conversion.isInteger()) {
            const auto bits = static_cast<std::uint64_t>(integer);
            text.putInteger(conversion, integer < 0 ? 0 - bits : bits, integer < 0);
        } else if (conversion.conversion == 'c' && integer > 0 && integer < 256) {
            text.put(static_cast<char>(static_cast<unsigned char>(integer)));
        }
    }
    return CString(text.view());
}

} // namespace qrb
