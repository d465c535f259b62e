// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/DocCompiler/CCompiledReader.h"

#include <algorithm>

namespace qrbdoc {

void CCompiledReader::fail(const std::string& message)
{
    if (m_error.empty())
        m_error = "byte " + std::to_string(m_at) + ": " + message;
}

std::size_t CCompiledReader::number(int bytes)
{
    const auto width = static_cast<std::size_t>(bytes);
    if (!m_error.empty() || m_bytes.size() - m_at < width) {
        fail("the document ends early");
        return 0;
    }
    std::size_t value = 0;
    for (std::size_t i = 0; i < width; ++i)
        value |= static_cast<std::size_t>(m_bytes[m_at + i]) << (8 * i);
    m_at += width;
    return value;
}

std::string CCompiledReader::text()
{
    const std::size_t index = number(2);
    if (m_error.empty() && index >= m_strings.size())
        fail("string " + std::to_string(index) + " does not exist");
    return m_error.empty() ? std::string(m_strings[index]) : std::string();
}

void CCompiledReader::readStrings()
{
    const std::size_t count = number(4);
    const std::size_t blockSize = number(4);
    if (m_error.empty() && (blockSize > m_bytes.size() - m_at || count > blockSize / 4 || count > kMaxStrings))
        fail("the string table is larger than the document");
    if (!m_error.empty())
        return;
    const auto block = m_bytes.subspan(m_at, blockSize);
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t offset = number(4);
        if (offset < count * 4 || offset >= blockSize)
            return fail("string " + std::to_string(i) + " lies outside of the string table");
        const auto rest = block.subspan(offset);
        const auto end = std::find(rest.begin(), rest.end(), 0);
        if (end == rest.end())
            return fail("string " + std::to_string(i) + " has no end");
        m_strings.emplace_back(reinterpret_cast<const char*>(rest.data()),
                               static_cast<std::size_t>(end - rest.begin()));
    }
    m_at += blockSize - count * 4;
}

void CCompiledReader::readKind(bool& isTemplate)
{
    const std::size_t kind = number(1);
    if (kind > 1)
        fail("unknown kind of node " + std::to_string(kind));
    isTemplate = kind == 1;
}

void CCompiledReader::readObject(DocumentNode& node, int depth)
{
    if (depth > kMaxDepth)
        return fail("nested deeper than " + std::to_string(kMaxDepth) + " levels");
    for (std::size_t left = number(2); left > 0 && m_error.empty(); --left) {
        std::string name = text();
        std::string value = text();
        node.attributes.emplace_back(std::move(name), std::move(value));
    }
    for (std::size_t left = number(2); left > 0 && m_error.empty(); --left)
        readChild(node.children.emplace_back(), depth + 1);
}

void CCompiledReader::readChild(DocumentNode& node, int depth)
{
    node.tag = text();
    node.name = text();
    readKind(node.isTemplate);
    if ((node.tag == kTemplateTag) != node.isTemplate)
        fail("the tag '" + node.tag + "' does not fit the kind of node");
    if (!node.isTemplate)
        return readObject(node, depth);
    node.tag = text();
    const std::size_t length = number(4);
    const std::size_t start = m_at;
    if (number(4) != 0)
        fail("the prefix of a template is not 0");
    bool isTemplate = false;
    readKind(isTemplate);
    if (isTemplate)
        fail("a template holds a template in place of an object");
    readObject(node, depth);
    if (m_at - start != length)
        fail("the length of template '" + node.name + "' is wrong");
}

std::string CCompiledReader::read(DocumentNode& out)
{
    readStrings();
    if (number(4) != 0)
        fail("the prefix of the root is not 0");
    bool isTemplate = false;
    readKind(isTemplate);
    if (isTemplate)
        fail("the root is a template");
    readObject(out, 0);
    if (m_at != m_bytes.size())
        fail("there are bytes behind the root");
    return m_error;
}

} // namespace qrbdoc
