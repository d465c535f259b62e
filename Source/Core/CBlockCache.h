// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CBlockPools.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace qrb {

/// Free blocks that one thread keeps for itself, so that most allocations touch nothing shared: for each class a chain in
/// use, and one whole batch in reserve. Thread: its own only.
class CBlockCache {
public:
    /// A block of the class, or null when the cache has none.
    [[nodiscard]] void* take(std::uint8_t classNumber) noexcept
    {
        CShelf& shelf = m_shelves[classNumber];
        CFreeBlock* block = shelf.chain;
        if (block != nullptr) [[likely]] {
            shelf.chain = block->next;
            --shelf.count;
        }
        return block;
    }
    /// Takes a block back unless the chain in use is full.
    [[nodiscard]] bool give(void* memory, std::uint8_t classNumber) noexcept
    {
        CShelf& shelf = m_shelves[classNumber];
        if (shelf.count >= shelf.limit) [[unlikely]] {
            return false;
        }
        auto* block = static_cast<CFreeBlock*>(memory);
        block->next = std::exchange(shelf.chain, block);
        ++shelf.count;
        return true;
    }

    CBlockCache() noexcept;
    /// Puts a chain of the reserve or the pool into use, and takes a block of it.
    [[nodiscard]] void* takeSlowly(CBlockPools& pools, std::uint8_t classNumber);
    /// Moves the full chain into reserve, what was in reserve to the pool, and takes the block back.
    void giveSlowly(CBlockPools& pools, void* memory, std::uint8_t classNumber) noexcept;
    /// Gives everything to the pools.
    void flush(CBlockPools& pools) noexcept;

    /// Neighbours in the list of all threads' caches.
    CBlockCache* m_next = nullptr;
    CBlockCache* m_before = nullptr;

private:
    struct CShelf {
        CFreeBlock* chain = nullptr;
        CFreeBlock* reserve = nullptr;
        std::uint32_t count = 0; // blocks in the chain
        std::uint32_t limit = 0;
    };
    std::array<CShelf, 255> m_shelves;
};

} // namespace qrb
