// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/DocCompiler/CDocumentWriter.h"

namespace qrbdoc {

namespace {

void put(std::vector<std::uint8_t>& out, std::size_t value, int bytes)
{
    for (int i = 0; i < bytes; ++i)
        out.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

} // namespace

std::vector<std::uint8_t> CDocumentWriter::write(const DocumentNode& root)
{
    writeText("", root.place);
    m_nodes.clear();
    writeObject(root);

    std::vector<std::uint8_t> out;
    std::size_t blockSize = m_strings.size() * 4;
    for (const std::string_view text : m_strings)
        blockSize += text.size() + 1;
    if (blockSize > 0xFFFFFFFFU || m_nodes.size() > 0xFFFFFFFFU) {
        m_session.error(root.place, "the document is larger than 4 GiB");
        return out;
    }
    put(out, m_strings.size(), 4);
    put(out, blockSize, 4);
    std::size_t offset = m_strings.size() * 4;
    for (const std::string_view text : m_strings) {
        put(out, offset, 4);
        offset += text.size() + 1;
    }
    for (const std::string_view text : m_strings) {
        out.insert(out.end(), text.begin(), text.end());
        out.push_back(0);
    }
    put(out, 0, 4);
    out.insert(out.end(), m_nodes.begin(), m_nodes.end());
    return out;
}

void CDocumentWriter::writeText(std::string_view text, SourcePlace place)
{
    const auto [found, isNew] = m_indices.try_emplace(text, m_strings.size());
    if (isNew && m_strings.size() == kMaxStrings) {
        m_session.error(place, "more than " + std::to_string(kMaxStrings) + " different texts in the document");
        m_indices.erase(found);
        put(m_nodes, 0, 2);
        return;
    }
    if (isNew)
        m_strings.push_back(text);
    put(m_nodes, found->second, 2);
}

void CDocumentWriter::writeObject(const DocumentNode& node)
{
    put(m_nodes, 0, 1);
    put(m_nodes, node.attributes.size(), 2);
    for (const auto& [name, value] : node.attributes) {
        writeText(name, node.place);
        writeText(value, node.place);
    }
    put(m_nodes, node.children.size(), 2);
    for (const DocumentNode& child : node.children)
        writeChild(child);
}

void CDocumentWriter::writeChild(const DocumentNode& node)
{
    writeText(node.isTemplate ? std::string_view(kTemplateTag) : std::string_view(node.tag), node.place);
    writeText(node.name, node.place);
    if (!node.isTemplate)
        return writeObject(node);
    put(m_nodes, 1, 1);
    writeText(node.tag, node.place);
    const std::size_t lengthAt = m_nodes.size();
    put(m_nodes, 0, 4);
    put(m_nodes, 0, 4);
    writeObject(node);
    const std::size_t length = m_nodes.size() - lengthAt - 4;
    for (std::size_t i = 0; i < 4; ++i)
        m_nodes[lengthAt + i] = static_cast<std::uint8_t>(length >> (8 * i));
}

} // namespace qrbdoc
