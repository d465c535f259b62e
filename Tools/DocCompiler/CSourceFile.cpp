// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/DocCompiler/CSourceFile.h"

#include <algorithm>
#include <charconv>
#include <cstdint>

namespace qrbdoc {

namespace {

bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

/// Length of the UTF-8 sequence at `text[at]`, 0 if it is not one.
std::size_t sequenceLength(const std::string& text, std::size_t at)
{
    const auto first = static_cast<unsigned char>(text[at]);
    const std::size_t length = first < 0x80                     ? 1
                               : first >= 0xC2 && first <= 0xDF ? 2
                               : (first & 0xF0) == 0xE0         ? 3
                               : first >= 0xF0 && first <= 0xF4 ? 4
                                                                : 0;
    if (at + length > text.size())
        return 0;
    for (std::size_t i = 1; i < length; ++i)
        if ((static_cast<unsigned char>(text[at + i]) & 0xC0) != 0x80)
            return 0;
    // Longer than needed, half of a surrogate pair, or above the last character.
    const auto second = static_cast<unsigned char>(length > 1 ? text[at + 1] : '\0');
    const bool isWrong = (first == 0xE0 && second < 0xA0) || (first == 0xED && second > 0x9F) ||
                         (first == 0xF0 && second < 0x90) || (first == 0xF4 && second > 0x8F);
    return isWrong ? 0 : length;
}

/// False if "&#...;" at `text[at]` stands for what is no character; the parser would cut the value there or write bytes
/// that are not UTF-8.
bool isGoodReference(const std::string& text, std::size_t at)
{
    const bool isHex = text.compare(at, 3, "&#x") == 0;
    const char* const end = text.data() + text.size();
    const char* const digits = text.data() + at + (isHex ? 3 : 2);
    std::uint32_t code = 0;
    const auto [stop, problem] = std::from_chars(digits, end, code, isHex ? 16 : 10);
    if (stop == digits || stop == end || *stop != ';')
        return true; // no reference
    return problem == std::errc() && code != 0 && code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF);
}

} // namespace

CSourceFile::CSourceFile(std::string path, std::string text) : m_path(std::move(path)), m_text(std::move(text)) {}

Diagnostic CSourceFile::diagnose(std::size_t offset, std::string message) const
{
    const std::size_t end = std::min(offset, m_text.size());
    Diagnostic out{m_path, 1, 1, std::move(message)};
    for (std::size_t i = 0; i < end; ++i) {
        ++out.column;
        if (m_text[i] == '\n') {
            ++out.line;
            out.column = 1;
        }
    }
    return out;
}

bool CSourceFile::checkEncoding(Diagnostic& error) const
{
    for (std::size_t i = 0; i < m_text.size();) {
        const std::size_t length = sequenceLength(m_text, i);
        if (length == 0 || m_text[i] == '\0') {
            error = diagnose(i, length == 0 ? "this byte is not UTF-8" : "a NUL byte in the text");
            return false;
        }
        if (m_text.compare(i, 2, "&#") == 0 && !isGoodReference(m_text, i)) {
            error = diagnose(i, "there is no such character");
            return false;
        }
        i += length;
    }
    return true;
}

bool CSourceFile::parse(Diagnostic& error)
{
    if (!checkEncoding(error))
        return false;
    const pugi::xml_parse_result result =
        m_document.load_buffer(m_text.data(), m_text.size(), pugi::parse_default, pugi::encoding_utf8);
    if (!result) {
        error = diagnose(static_cast<std::size_t>(std::max<std::ptrdiff_t>(result.offset, 0)),
                         std::string("malformed XML: ") + result.description());
        return false;
    }
    for (pugi::xml_node sibling = root().next_sibling(); sibling; sibling = sibling.next_sibling())
        if (sibling.type() == pugi::node_element) {
            error = diagnose(place(sibling).offset, "a second root element");
            return false;
        }
    return true;
}

SourcePlace CSourceFile::place(pugi::xml_node node) const
{
    const auto offset = static_cast<std::size_t>(std::max<std::ptrdiff_t>(node.offset_debug(), 0));
    // An element's offset is that of its tag, behind the "<".
    return {this, node.type() == pugi::node_element && offset > 0 ? offset - 1 : offset};
}

SourcePlace CSourceFile::attributePlace(pugi::xml_node element, std::size_t index) const
{
    const std::size_t start = place(element).offset;
    std::size_t at = start;
    while (at < m_text.size() && !isBlank(m_text[at]))
        ++at;
    for (std::size_t i = 0;; ++i) {
        while (at < m_text.size() && isBlank(m_text[at]))
            ++at;
        if (i == index && at < m_text.size())
            return {this, at};
        const std::size_t open = m_text.find_first_of("\"'", at);
        const std::size_t close = open == std::string::npos ? open : m_text.find(m_text[open], open + 1);
        if (close == std::string::npos)
            return {this, start};
        at = close + 1;
    }
}

} // namespace qrbdoc
