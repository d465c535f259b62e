// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CSampleBufferPool.h"
#include "Core/CArray.h"

namespace qrb {

/// Ring of pool buffers that holds the last samples of one line.
///
/// Thread: audio. Takes buffers from the pool only when the ring is rebuilt.
class CDSPModDelayBase {
public:
    /// `pool` outlives the object.
    explicit CDSPModDelayBase(CSampleBufferPool& pool) : m_pool(&pool) {}

    CDSPModDelayBase(const CDSPModDelayBase&) = delete;
    CDSPModDelayBase& operator=(const CDSPModDelayBase&) = delete;
    CDSPModDelayBase(CDSPModDelayBase&&) = default;
    CDSPModDelayBase& operator=(CDSPModDelayBase&&) = default;

    /// Samples a ring buffer holds, at least 64. What the ring remembers survives the change.
    void setBlockSize(int samples);
    [[nodiscard]] int blockSize() const { return m_blockSize; }

protected:
    /// Most samples that are written before the oldest of them is read.
    static constexpr int kChunkLength = 256;

    /// Releases the ring and forgets how long it had to be.
    void clearRing();

    /// Makes the ring long enough to read `delay` samples back; it never gets shorter before `clearRing`.
    void keepLength(int delay);

    /// Appends at most kChunkLength samples.
    void writeChunk(const double* in, int count);

    /// Copies `count` samples, the last of which is `delay` samples older than the last one written.
    void readChunk(double* out, int count, int delay) const;

private:
    void rebuild(int blockCount, int blockSize);

    CSampleBufferPool* m_pool;
    CArray<CSampleBuffer> m_blocks;
    int m_blockSize = 64;
    int m_writeBlock = 0;
    int m_writePosition = 0;
    int m_keptLength = 0;
};

} // namespace qrb
