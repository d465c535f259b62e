// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CDocumentCursor.h"

namespace qrb {

bool CDocumentCursor::read(std::uint8_t& value)
{
    std::span<const std::uint8_t> bytes;
    if (!readBytes(1, bytes))
        return false;
    value = bytes[0];
    return true;
}

bool CDocumentCursor::read(std::uint16_t& value)
{
    std::span<const std::uint8_t> bytes;
    if (!readBytes(2, bytes))
        return false;
    value = readDocumentU16(bytes.data());
    return true;
}

bool CDocumentCursor::read(std::uint32_t& value)
{
    std::span<const std::uint8_t> bytes;
    if (!readBytes(4, bytes))
        return false;
    value = readDocumentU16(bytes.data()) | static_cast<std::uint32_t>(readDocumentU16(bytes.data() + 2)) << 16;
    return true;
}

bool CDocumentCursor::readBytes(std::size_t count, std::span<const std::uint8_t>& bytes)
{
    if (count > m_bytes.size())
        return false;
    bytes = m_bytes.first(count);
    m_bytes = m_bytes.subspan(count);
    return true;
}

bool CDocumentCursor::readString(const CTextRecord*& text)
{
    if (m_bytes.size() < 2)
        return false;
    const std::uint16_t index = readDocumentU16(m_bytes.data());
    if (index >= m_document.stringCount())
        return false;
    m_bytes = m_bytes.subspan(2);
    text = &m_document.string(index);
    return true;
}

} // namespace qrb
