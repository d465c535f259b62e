// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CWriteSeqBuffer.h"

#include "Core/CQrbMemAllocator.h"

#include <algorithm>
#include <cstring>

namespace qrb {

CWriteSeqBuffer::CWriteSeqBuffer(std::size_t blockSize) : m_blockSize(std::max<std::size_t>(blockSize, 1)) {}

CWriteSeqBuffer::~CWriteSeqBuffer()
{
    clear();
}

CErrorPtr CWriteSeqBuffer::write(const void* buffer, std::size_t count)
{
    const auto* source = static_cast<const std::uint8_t*>(buffer);
    while (count > 0) {
        if (m_blocks.empty() || m_blocks.back().used == m_blocks.back().capacity) {
            // The first block keeps to its size: most texts and messages fit it.
            const std::size_t capacity = m_blocks.empty() ? m_blockSize : std::max(m_blockSize, count);
            m_blocks.append({static_cast<std::uint8_t*>(CQrbMemAllocator::allocate(capacity)), capacity, 0});
        }
        CBlock& block = m_blocks.back();
        const std::size_t piece = std::min(count, block.capacity - block.used);
        std::memcpy(block.data + block.used, source, piece);
        block.used += piece;
        m_size += piece;
        source += piece;
        count -= piece;
    }
    return nullptr;
}

void CWriteSeqBuffer::getContiguous(CByteArray& buffer) const
{
    buffer.clear();
    buffer.reserve(m_size);
    for (const CBlock& block : m_blocks)
        buffer.appendAll({block.data, block.used});
}

CErrorPtr CWriteSeqBuffer::writeTo(COutputStream& stream) const
{
    for (const CBlock& block : m_blocks)
        QRB_TRY(stream.write(block.data, block.used));
    return nullptr;
}

void CWriteSeqBuffer::clear()
{
    for (const CBlock& block : m_blocks)
        CQrbMemAllocator::release(block.data);
    m_blocks.clear();
    m_size = 0;
}

} // namespace qrb
