// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/QrbPreset/TextEscape.h"

#include "Core/CUtf8.h"

#include <cstdint>

namespace qrbpreset {

namespace {

constexpr std::string_view kBlanks = " \t\r\n";
constexpr std::string_view kDigits = "0123456789ABCDEF";

bool isForXml(char32_t c)
{
    return c >= 0x20 && c != 0x7F && c != 0xFFFE && c != 0xFFFF;
}

/// Bytes of the character at the front that XML carries; 0 if there is none.
std::size_t characterLength(std::string_view bytes)
{
    const auto* const data = reinterpret_cast<const std::uint8_t*>(bytes.data());
    const std::size_t length = qrb::utf8SequenceLength(*data);
    char32_t character = 0;
    const bool isGood = length > 0 && length <= bytes.size() && qrb::utf8Decode(data, length, character);
    return isGood && isForXml(character) ? length : 0;
}

void appendHex(std::string& out, char byte)
{
    out += kDigits[static_cast<unsigned char>(byte) >> 4];
    out += kDigits[static_cast<unsigned char>(byte) & 15];
}

/// Value of a digit, -1 for what is none.
int digitValue(char c)
{
    const char upper = c >= 'a' && c <= 'f' ? static_cast<char>(c - 'a' + 'A') : c;
    const std::size_t at = kDigits.find(upper);
    return at == std::string_view::npos ? -1 : static_cast<int>(at);
}

} // namespace

std::string escaped(std::string_view bytes, bool alsoQuotes)
{
    std::string out;
    for (std::size_t at = 0; at < bytes.size();) {
        const std::size_t length = characterLength(bytes.substr(at));
        if (length == 0) {
            out += "\\x";
            appendHex(out, bytes[at++]);
            continue;
        }
        if (bytes[at] == '\\' || (alsoQuotes && bytes[at] == '"'))
            out += '\\';
        out += bytes.substr(at, length);
        at += length;
    }
    return out;
}

std::optional<std::string> unescaped(std::string_view text)
{
    std::string out;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] != '\\') {
            out += text[at];
            continue;
        }
        const char kind = ++at < text.size() ? text[at] : '\0';
        if (kind == '\\' || kind == '"')
            out += kind;
        else if (kind == 'n')
            out += '\n';
        else if (kind == 't')
            out += '\t';
        else if (kind == 'x' && at + 2 < text.size() && digitValue(text[at + 1]) >= 0 &&
                 digitValue(text[at + 2]) >= 0) {
            out += static_cast<char>(digitValue(text[at + 1]) * 16 + digitValue(text[at + 2]));
            at += 2;
        } else
            return std::nullopt;
    }
    return out;
}

std::string xmlText(std::string_view text)
{
    std::string out;
    for (const char c : text) {
        if (c == '&')
            out += "&amp;";
        else if (c == '<')
            out += "&lt;";
        else if (c == '>')
            out += "&gt;";
        else
            out += c;
    }
    return out;
}

std::string xmlAttribute(std::string_view name, std::string_view text)
{
    std::string out = " " + std::string(name) + "=\"";
    for (const char c : xmlText(text))
        out += c == '"' ? std::string("&quot;") : std::string(1, c);
    return out + '"';
}

std::string hexText(std::string_view bytes)
{
    std::string out;
    for (const char byte : bytes)
        appendHex(out, byte);
    return out;
}

std::optional<std::string> bytesOfHex(std::string_view text)
{
    std::string out;
    int high = -1;
    for (const char c : text) {
        if (kBlanks.find(c) != std::string_view::npos)
            continue;
        const int digit = digitValue(c);
        if (digit < 0)
            return std::nullopt;
        if (high >= 0)
            out += static_cast<char>(high * 16 + digit);
        high = high < 0 ? digit : -1;
    }
    return high < 0 ? std::optional(out) : std::nullopt;
}

std::string_view trimmed(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(kBlanks);
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

} // namespace qrbpreset
