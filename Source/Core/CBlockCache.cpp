// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CBlockCache.h"

namespace qrb {

CBlockCache::CBlockCache() noexcept
{
    for (std::size_t i = 0; i < m_shelves.size(); ++i) {
        m_shelves[i].limit = CBlockPool::batchLimit(static_cast<std::uint8_t>(i));
    }
}

void* CBlockCache::takeSlowly(CBlockPools& pools, std::uint8_t classNumber)
{
    CShelf& shelf = m_shelves[classNumber];
    CFreeBlock* batch = std::exchange(shelf.reserve, nullptr);
    if (batch == nullptr) {
        batch = pools[classNumber].takeBatch(classNumber);
    }
    shelf.chain = batch->next;
    shelf.count = batch->count - 1;
    return batch;
}

void CBlockCache::giveSlowly(CBlockPools& pools, void* memory, std::uint8_t classNumber) noexcept
{
    CShelf& shelf = m_shelves[classNumber];
    if (shelf.reserve != nullptr) {
        pools[classNumber].giveBatch(shelf.reserve);
    }
    shelf.chain->count = shelf.count;
    shelf.reserve = std::exchange(shelf.chain, nullptr);
    shelf.count = 0;
    static_cast<void>(give(memory, classNumber));
}

void CBlockCache::flush(CBlockPools& pools) noexcept
{
    for (std::size_t i = 0; i < m_shelves.size(); ++i) {
        CShelf& shelf = m_shelves[i];
        if (CFreeBlock* chain = std::exchange(shelf.chain, nullptr)) {
            chain->count = std::exchange(shelf.count, 0U);
            pools[i].giveBatch(chain);
        }
        if (CFreeBlock* reserve = std::exchange(shelf.reserve, nullptr)) {
            pools[i].giveBatch(reserve);
        }
    }
}

} // namespace qrb
