// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CBlockPools.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <utility>

namespace qrb {

namespace {

constexpr std::size_t kTagRoom = 16;       // the byte in front of a block costs a whole alignment step
constexpr std::size_t kChunkOverhead = 24; // link to the next chunk, and the first block's tag
constexpr std::size_t kMaxBatchBytes = 8192;
constexpr std::uint32_t kMaxItemsOfChunk = 128;
constexpr std::uint32_t kMaxLargeItemsOfChunk = 64;
constexpr std::size_t kLargeItem = 2048;

static_assert(sizeof(CFreeBlock) < 2 * kTagRoom, "a free block must fit the smallest class up to the next tag");

constexpr std::size_t sizeOfClass(std::uint8_t classNumber) noexcept
{
    return (std::size_t{classNumber} + 1) * 16;
}

constexpr std::uint32_t maxItemsOfChunk(std::uint8_t classNumber) noexcept
{
    return sizeOfClass(classNumber) >= kLargeItem ? kMaxLargeItemsOfChunk : kMaxItemsOfChunk;
}

} // namespace

void endOutOfMemory() noexcept
{
    std::fputs("Out of memory.\n", stderr);
    std::abort();
}

CBatchStack::CTop CBatchStack::look() const noexcept
{
    // The halves may be of different moments; the swap then fails. The tag must not be read after the batch's link is.
    const auto* halves = reinterpret_cast<const std::uint64_t*>(&m_top);
    const std::uint64_t tag = __atomic_load_n(halves + 1, __ATOMIC_ACQUIRE);
    return {reinterpret_cast<CFreeBlock*>(__atomic_load_n(halves, __ATOMIC_ACQUIRE)), tag};
}

bool CBatchStack::swap(CTop before, CFreeBlock* batch) noexcept
{
    const auto join = [](CFreeBlock* block, std::uint64_t tag) {
        return static_cast<CWord128>(tag) << 64 | reinterpret_cast<std::uintptr_t>(block);
    };
    return __sync_bool_compare_and_swap(&m_top, join(before.batch, before.tag), join(batch, before.tag + 1));
}

void CBatchStack::push(CFreeBlock* batch) noexcept
{
    m_blockCount.fetch_add(batch->count, std::memory_order_relaxed);
    CTop top;
    do {
        top = look();
        __atomic_store_n(&batch->nextBatch, top.batch, __ATOMIC_RELAXED);
    } while (!swap(top, batch));
}

CFreeBlock* CBatchStack::pop() noexcept
{
    for (;;) {
        const CTop top = look();
        if (top.batch == nullptr) {
            return nullptr;
        }
        // Another thread may have taken the batch and write its own data here, but the memory stays; the swap notices.
        CFreeBlock* below = __atomic_load_n(&top.batch->nextBatch, __ATOMIC_RELAXED);
        if (swap(top, below)) {
            m_blockCount.fetch_sub(top.batch->count, std::memory_order_relaxed);
            return top.batch;
        }
    }
}

void CBatchStack::clear() noexcept
{
    while (pop() != nullptr) {
    }
}

std::uint32_t CBlockPool::batchLimit(std::uint8_t classNumber) noexcept
{
    return static_cast<std::uint32_t>(std::clamp<std::size_t>(kMaxBatchBytes / sizeOfClass(classNumber), 4, 32));
}

CFreeBlock* CBlockPool::makeChunk(std::uint8_t classNumber, std::uint32_t count)
{
    const std::size_t stride = sizeOfClass(classNumber) + kTagRoom;
    auto* raw = static_cast<unsigned char*>(std::malloc(count * stride + kChunkOverhead));
    if (raw == nullptr) {
        endOutOfMemory();
    }
    m_chunks = new (raw) CChunk{m_chunks};
    m_itemCount += count;
    CFreeBlock* first = nullptr;
    for (std::uint32_t i = count; i-- > 0;) {
        unsigned char* block = raw + kTagRoom + i * stride;
        block[-1] = classNumber;
        first = new (block) CFreeBlock{first, nullptr, count - i};
    }
    return first;
}

CFreeBlock* CBlockPool::pushAllButOneBatch(CFreeBlock* first, std::uint8_t classNumber, std::uint32_t count) noexcept
{
    const std::uint32_t limit = batchLimit(classNumber);
    while (count > limit) {
        CFreeBlock* last = first;
        for (std::uint32_t i = 1; i < limit; ++i) {
            last = last->next;
        }
        CFreeBlock* rest = std::exchange(last->next, nullptr);
        first->count = limit;
        m_free.push(first);
        first = rest;
        count -= limit;
    }
    first->count = count;
    return first;
}

void CBlockPool::growNextChunk(std::uint8_t classNumber) noexcept
{
    m_itemsInNextChunk = std::min(m_itemsInNextChunk * 2, maxItemsOfChunk(classNumber));
}

CFreeBlock* CBlockPool::takeBatch(std::uint8_t classNumber)
{
    if (CFreeBlock* batch = m_free.pop()) {
        return batch;
    }
    const platform::CScopedLock guard(m_lock);
    if (CFreeBlock* batch = m_free.pop()) {
        return batch; // somebody else refilled while this thread waited
    }
    const std::uint32_t count = m_itemsInNextChunk;
    CFreeBlock* first = makeChunk(classNumber, count);
    growNextChunk(classNumber);
    return pushAllButOneBatch(first, classNumber, count);
}

void CBlockPool::prefill(std::uint8_t classNumber, std::size_t count)
{
    const platform::CScopedLock guard(m_lock);
    const auto wanted = static_cast<std::int64_t>(std::min<std::size_t>(count, 1U << 30));
    while (m_free.blockCount() < wanted) {
        const std::int64_t missing = std::min<std::int64_t>(wanted - m_free.blockCount(), maxItemsOfChunk(classNumber));
        const std::uint32_t items = std::max(m_itemsInNextChunk, static_cast<std::uint32_t>(missing));
        m_free.push(pushAllButOneBatch(makeChunk(classNumber, items), classNumber, items));
        growNextChunk(classNumber);
    }
}

std::size_t CBlockPool::chunkCount()
{
    const platform::CScopedLock guard(m_lock);
    std::size_t count = 0;
    for (const CChunk* chunk = m_chunks; chunk != nullptr; chunk = chunk->next) {
        ++count;
    }
    return count;
}

std::size_t CBlockPool::freeChunksIfWhole() noexcept
{
    const platform::CScopedLock guard(m_lock);
    const std::int64_t missing = m_itemCount - m_free.blockCount();
    if (missing == 0) {
        m_free.clear();
        while (m_chunks != nullptr) {
            std::free(std::exchange(m_chunks, m_chunks->next));
        }
        m_itemCount = 0;
        m_itemsInNextChunk = 1;
    }
    return static_cast<std::size_t>(missing);
}

std::size_t CBlockPools::chunkCount()
{
    std::size_t count = 0;
    for (CBlockPool& pool : m_pools) {
        count += pool.chunkCount();
    }
    return count;
}

std::size_t CBlockPools::freeChunksIfWhole() noexcept
{
    std::size_t missing = 0;
    for (CBlockPool& pool : m_pools) {
        missing += pool.freeChunksIfWhole();
    }
    return missing;
}

} // namespace qrb
