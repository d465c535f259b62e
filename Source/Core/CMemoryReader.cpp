// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CMemoryReader.h"

#include <algorithm>
#include <cstring>

namespace qrb {

CMemoryReader::CMemoryReader(CByteArray&& data) : m_data(std::move(data)), m_bytes(m_data.span()) {}

CMemoryReader::CMemoryReader(std::span<const std::uint8_t> bytes) : m_bytes(bytes) {}

CErrorPtr CMemoryReader::skip(std::uint64_t count)
{
    if (count > remaining().size())
        return QRB_ERROR("@qrbstr_CMemoryReader_skip_EOF Premature end of memory resource while skipping "
                         "(pos %1, count %2, size %3).",
                         m_position, count, m_bytes.size());
    m_position += static_cast<std::size_t>(count);
    return nullptr;
}

CErrorPtr CMemoryReader::read(void* buffer, std::size_t count)
{
    if (count > remaining().size())
        return QRB_ERROR("@qrbstr_CMemoryReader_read_EOF Premature end of memory resource while reading "
                         "(pos %1, count %2, size %3).",
                         m_position, count, m_bytes.size());
    return readAvailable(buffer, count);
}

CErrorPtr CMemoryReader::readAvailable(void* buffer, std::size_t& count)
{
    count = std::min(count, remaining().size());
    if (count > 0)
        std::memcpy(buffer, remaining().data(), count);
    m_position += count;
    return nullptr;
}

CErrorPtr CMemoryReader::getPosition(std::uint64_t& position)
{
    position = m_position;
    return nullptr;
}

CErrorPtr CMemoryReader::getSize(std::uint64_t& size)
{
    size = m_bytes.size();
    return nullptr;
}

CErrorPtr CMemoryReader::setPosition(std::uint64_t position)
{
    if (position > m_bytes.size())
        return QRB_ERROR("@qrbstr_CMemoryReader_setPosition_seek Premature end of memory resource while seeking "
                         "(pos %1, count %2, size %3).",
                         m_position, position, m_bytes.size());
    m_position = static_cast<std::size_t>(position);
    return nullptr;
}

} // namespace qrb
