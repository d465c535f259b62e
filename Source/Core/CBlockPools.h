// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/CRecursiveLock.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

namespace qrb {

/// A block that is free. Free blocks travel between threads in batches: a chain of blocks whose first one knows the count
/// and links to the next batch of a stack. Fits the smallest block: 16 bytes, and 15 unused up to the next block's tag.
struct CFreeBlock {
    CFreeBlock* next;
    CFreeBlock* nextBatch;
    std::uint32_t count;
};

/// Lock-free stack of batches. Its head carries a tag that changes with every step, so that a head which comes back between
/// a look and a swap is noticed and no block is handed out twice.
class CBatchStack {
public:
    void push(CFreeBlock* batch) noexcept;
    /// The batch on top, or null.
    [[nodiscard]] CFreeBlock* pop() noexcept;
    /// Number of free blocks, a moment ago.
    [[nodiscard]] std::int64_t blockCount() const noexcept { return m_blockCount.load(std::memory_order_relaxed); }
    /// Forgets all batches. Nobody else may use the stack meanwhile.
    void clear() noexcept;

private:
    __extension__ using CWord128 = unsigned __int128;

    struct CTop {
        CFreeBlock* batch;
        std::uint64_t tag;
    };
    [[nodiscard]] CTop look() const noexcept;
    [[nodiscard]] bool swap(CTop before, CFreeBlock* batch) noexcept;

    CWord128 m_top = 0; // low half: batch, high half: tag
    std::atomic<std::int64_t> m_blockCount{0};
};

/// The pool of one size class. A block's address is a multiple of 16, and the byte in front of it is the class number.
class alignas(64) CBlockPool {
public:
    /// Blocks that a thread keeps in a row at most; less for larger ones, so that a thread hoards no more than some KB.
    [[nodiscard]] static std::uint32_t batchLimit(std::uint8_t classNumber) noexcept;

    /// A batch of at most batchLimit() blocks; makes a new chunk when none is free. Waits while another thread does so.
    [[nodiscard]] CFreeBlock* takeBatch(std::uint8_t classNumber);
    void giveBatch(CFreeBlock* batch) noexcept { m_free.push(batch); }
    void prefill(std::uint8_t classNumber, std::size_t count);
    [[nodiscard]] std::size_t chunkCount();
    /// Gives all chunks back to the system if every block is here, and returns how many are not.
    std::size_t freeChunksIfWhole() noexcept;

private:
    struct CChunk {
        CChunk* next;
    };
    CFreeBlock* makeChunk(std::uint8_t classNumber, std::uint32_t count);
    CFreeBlock* pushAllButOneBatch(CFreeBlock* first, std::uint8_t classNumber, std::uint32_t count) noexcept;
    void growNextChunk(std::uint8_t classNumber) noexcept;

    CBatchStack m_free;
    platform::CRecursiveLock m_lock{kSpinCount}; // for all below
    CChunk* m_chunks = nullptr;
    std::uint32_t m_itemsInNextChunk = 1;
    std::int64_t m_itemCount = 0; // in all chunks

    static constexpr unsigned kSpinCount = 50;
};

/// The pools of all size classes.
class CBlockPools {
public:
    [[nodiscard]] CBlockPool& operator[](std::size_t classNumber) noexcept { return m_pools[classNumber]; }
    [[nodiscard]] std::size_t chunkCount();
    /// See CBlockPool.
    std::size_t freeChunksIfWhole() noexcept;

private:
    std::array<CBlockPool, 255> m_pools;
};

/// Says that memory has run out and ends the process; nothing in the library can go on without it.
[[noreturn]] void endOutOfMemory() noexcept;

} // namespace qrb
