// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/DocCompiler/CSourceFile.h"

#include <algorithm>

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
    return length;
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
        i += length;
    }
    // The parser would cut the value at the NUL without a word.
    for (const char* reference : {"&#0;", "&#x0;"})
        if (const std::size_t at = m_text.find(reference); at != std::string::npos) {
            error = diagnose(at, "the character 0 cannot be part of a text");
            return false;
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
