// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/CDSPModDelayBase.h"

#include <algorithm>
#include <utility>

namespace qrb {

void CDSPModDelayBase::setBlockSize(int samples)
{
    const int newSize = std::max(samples, kMinBlockSize);
    if (newSize == m_blockSize)
        return;
    if (m_blocks.empty()) {
        m_blockSize = newSize;
        return;
    }
    CDSPModDelayBase resized(*m_pool);
    resized.m_blockSize = newSize;
    resized.keepLength(m_keptLength);
    const int length = std::min(blockCount() * m_blockSize, resized.blockCount() * newSize);
    double chunk[kChunkLength];
    for (int left = length; left > 0;) {
        const int count = std::min(left, kChunkLength);
        left -= count;
        readChunk(chunk, count, left);
        resized.writeChunk(chunk, count);
    }
    *this = std::move(resized);
}

void CDSPModDelayBase::clearRing()
{
    m_blocks.clear();
    m_writeBlock = 0;
    m_writePosition = 0;
    m_keptLength = 0;
}

int CDSPModDelayBase::neededBlockCount(int blockSize) const
{
    return (kChunkLength + blockSize + m_keptLength - 1) / blockSize;
}

void CDSPModDelayBase::keepLength(int delay)
{
    m_keptLength = std::max(m_keptLength, delay);
    const int count = neededBlockCount(m_blockSize);
    if (count > blockCount())
        grow(count);
}

void CDSPModDelayBase::grow(int newBlockCount)
{
    CArray<CSampleBuffer> blocks;
    blocks.reserve(static_cast<std::size_t>(newBlockCount));
    const int oldCount = blockCount();
    if (oldCount > 0) {
        // The oldest samples share a block with the newest; they move to one of their own in front of the others.
        CSampleBuffer oldest = m_pool->getSilence(m_blockSize);
        CSampleBuffer& newest = m_blocks[static_cast<std::size_t>(m_writeBlock)];
        std::copy(newest.data() + m_writePosition, newest.data() + m_blockSize, oldest.data() + m_writePosition);
        std::fill(newest.data() + m_writePosition, newest.data() + m_blockSize, 0.0);
        blocks.append(std::move(oldest));
        for (int i = 1; i <= oldCount; ++i)
            blocks.append(std::move(m_blocks[static_cast<std::size_t>((m_writeBlock + i) % oldCount)]));
        m_writeBlock = oldCount;
    }
    while (static_cast<int>(blocks.size()) < newBlockCount)
        blocks.append(m_pool->getSilence(m_blockSize));
    m_blocks = std::move(blocks);
}

void CDSPModDelayBase::writeChunk(const double* in, int count)
{
    while (count > 0) {
        if (m_writePosition == m_blockSize) {
            m_writePosition = 0;
            m_writeBlock = m_writeBlock + 1 == blockCount() ? 0 : m_writeBlock + 1;
        }
        const int part = std::min(count, m_blockSize - m_writePosition);
        std::copy(in, in + part, m_blocks[static_cast<std::size_t>(m_writeBlock)].data() + m_writePosition);
        m_writePosition += part;
        in += part;
        count -= part;
    }
}

void CDSPModDelayBase::readChunk(double* out, int count, int delay) const
{
    int position = m_writeBlock * m_blockSize + m_writePosition - delay - count;
    if (position < 0)
        position += blockCount() * m_blockSize;
    int block = position / m_blockSize;
    int start = position % m_blockSize;
    while (count > 0) {
        const int part = std::min(count, m_blockSize - start);
        const double* samples = m_blocks[static_cast<std::size_t>(block)].data() + start;
        std::copy(samples, samples + part, out);
        out += part;
        count -= part;
        start = 0;
        block = block + 1 == blockCount() ? 0 : block + 1;
    }
}

} // namespace qrb
