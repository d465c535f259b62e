// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CArray.h"
#include "Core/COutputStream.h"

namespace qrb {

/// Writer into memory that grows in blocks, so that what is written never moves.
class CWriteSeqBuffer : public COutputStream {
public:
    static constexpr std::size_t kDefaultBlockSize = 256;

    explicit CWriteSeqBuffer(std::size_t blockSize = kDefaultBlockSize);
    ~CWriteSeqBuffer() override;
    CWriteSeqBuffer(const CWriteSeqBuffer&) = delete;
    CWriteSeqBuffer& operator=(const CWriteSeqBuffer&) = delete;

    CErrorPtr write(const void* buffer, std::size_t count) override;

    /// Bytes written so far.
    [[nodiscard]] std::size_t getSize() const { return m_size; }
    /// Blocks in use; tells how the writes were cut.
    [[nodiscard]] std::size_t getBlockCount() const { return m_blocks.size(); }
    /// Replaces the content of `buffer` with all bytes written.
    void getContiguous(CByteArray& buffer) const;
    CErrorPtr writeTo(COutputStream& stream) const;
    /// Forgets what was written.
    void clear();

private:
    struct CBlock {
        std::uint8_t* data;
        std::size_t capacity;
        std::size_t used;
    };

    std::size_t m_blockSize;
    std::size_t m_size = 0;
    CArray<CBlock> m_blocks; // owned memory of CQrbMemAllocator
};

} // namespace qrb
