// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CSampleBufferPool.h"
#include "Core/CArray.h"

namespace qrb {

/// Ring of pool buffers that holds the last samples of one line.
///
/// Thread: audio. Takes buffers from the pool only when the ring grows or its block size changes.
class CDSPModDelayBase {
public:
    static constexpr int kMinBlockSize = 64;

    /// `pool` outlives the object.
    explicit CDSPModDelayBase(CSampleBufferPool& pool) : m_pool(&pool) {}

    CDSPModDelayBase(const CDSPModDelayBase&) = delete;
    CDSPModDelayBase& operator=(const CDSPModDelayBase&) = delete;
    CDSPModDelayBase(CDSPModDelayBase&&) = default;
    CDSPModDelayBase& operator=(CDSPModDelayBase&&) = default;
    ~CDSPModDelayBase() = default;

    /// Samples a ring buffer holds, at least kMinBlockSize. What the ring remembers survives the change.
    void setBlockSize(int samples);
    [[nodiscard]] int blockSize() const { return m_blockSize; }

protected:
    /// Most samples that are written before the oldest of them is read.
    static constexpr int kChunkLength = 256;

    [[nodiscard]] CSampleBufferPool& pool() const { return *m_pool; }

    /// Releases the ring and forgets how long it had to be.
    void clearRing();

    /// Makes the ring long enough to read `delay` samples back from any sample of a chunk; it never gets shorter before
    /// `clearRing`, so that a later, longer delay finds what it asks for.
    void keepLength(int delay);

    /// Appends at most kChunkLength samples to the ring, which has a length.
    void writeChunk(const double* in, int count);

    /// Copies `count` samples, the last of which is `delay` samples older than the last one written.
    void readChunk(double* out, int count, int delay) const;

private:
    [[nodiscard]] int blockCount() const { return static_cast<int>(m_blocks.size()); }
    [[nodiscard]] int neededBlockCount(int blockSize) const;
    void grow(int newBlockCount);

    CSampleBufferPool* m_pool;
    CArray<CSampleBuffer> m_blocks;
    int m_blockSize = kMinBlockSize;
    int m_writeBlock = 0;
    int m_writePosition = 0; ///< within the write block; behind it lie the oldest samples of the ring
    int m_keptLength = 0;    ///< longest delay since the ring was cleared
};

} // namespace qrb
