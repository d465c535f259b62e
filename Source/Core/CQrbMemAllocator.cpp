// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CQrbMemAllocator.h"

#include "Core/CBlockCache.h"
#include "Platform/CThreadEndCall.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>

namespace qrb {

namespace {

/// What a thread knows of the allocator. Kept plain, so that reaching it costs one instruction.
struct CThreadState {
    CBlockCache* cache = nullptr;
    std::uint64_t allocateCount = 0;
    bool isEnding = false; // the cache is gone for good; the last few blocks go through the pools directly
};

[[gnu::tls_model("initial-exec")]] constinit thread_local CThreadState t_state;

} // namespace

std::uint64_t CQrbMemAllocator::allocateCount() noexcept
{
    return t_state.allocateCount;
}

#if QRB_SYSTEM_ALLOCATOR

void* CQrbMemAllocator::allocate(std::size_t size)
{
    return reallocate(nullptr, size);
}

void* CQrbMemAllocator::reallocate(void* block, std::size_t size)
{
    ++t_state.allocateCount;
    // Sizes no system has are refused here, since a sanitizer ends the process on them by itself only in some set-ups.
    const bool isPossible = size <= static_cast<std::size_t>(-1) / 2;
    void* moved = isPossible ? std::realloc(block, size == 0 ? 16 : size) : nullptr;
    if (moved == nullptr) {
        endOutOfMemory();
    }
    return moved;
}

void CQrbMemAllocator::release(void* block) noexcept
{
    std::free(block);
}

void CQrbMemAllocator::prefill(std::size_t, std::size_t) {}

std::size_t CQrbMemAllocator::chunkCount() noexcept
{
    return 0;
}

std::size_t CQrbMemAllocator::destroyAll() noexcept
{
    return 0;
}

void CQrbMemAllocator::destroyAllIfAlone() noexcept {}

void CQrbMemAllocator::leaveThreads() noexcept {}

void CQrbMemAllocator::leaveProcess() noexcept {}

#else

namespace {

constexpr std::uint8_t kLargeTag = 255;
constexpr std::size_t kAlignment = 16;
// In front of a large block: distance byte, eight bytes of size, tag.
constexpr std::size_t kLargeHeader = 10;

constinit std::atomic<CBlockPools*> g_pools{nullptr};

// All caches, which outlive the pools as long as their threads do.
constinit std::mutex g_cachesLock;
constinit CBlockCache* g_caches = nullptr;

/// Class of a size up to kMaxPooledSize; 0 counts as 16.
std::uint8_t classOf(std::size_t size) noexcept
{
    return static_cast<std::uint8_t>((size - (size != 0 ? 1 : 0)) / 16);
}

CBlockPools& pools()
{
    CBlockPools* present = g_pools.load(std::memory_order_acquire);
    if (present != nullptr) [[likely]] {
        return *present;
    }
    void* room = std::aligned_alloc(alignof(CBlockPools), sizeof(CBlockPools));
    if (room == nullptr) {
        endOutOfMemory();
    }
    auto* made = new (room) CBlockPools;
    if (g_pools.compare_exchange_strong(present, made, std::memory_order_acq_rel)) {
        return *made;
    }
    made->~CBlockPools();
    std::free(room);
    return *present;
}

/// Takes a cache out of the list. Under the lock of the caches.
void unlinkCache(CBlockCache& cache) noexcept
{
    (cache.m_before != nullptr ? cache.m_before->m_next : g_caches) = cache.m_next;
    if (cache.m_next != nullptr) {
        cache.m_next->m_before = cache.m_before;
    }
}

/// Gives the cache of the calling thread back, which ends.
void endThread() noexcept
{
    CBlockCache* cache = std::exchange(t_state.cache, nullptr);
    t_state.isEnding = true;
    if (cache == nullptr) {
        return;
    }
    {
        const std::lock_guard guard(g_cachesLock);
        unlinkCache(*cache);
        if (CBlockPools* present = g_pools.load(std::memory_order_acquire)) {
            cache->flush(*present);
        }
    }
    std::free(cache);
}

constinit platform::CThreadEndCall g_threadEnd{endThread}; // under the lock of the caches, but for the call

/// A cache for the calling thread; null, now and from then on, if the thread's end cannot be followed.
CBlockCache* makeCache()
{
    const std::lock_guard guard(g_cachesLock);
    if (!g_threadEnd.prepare() || !g_threadEnd.wantEnd()) {
        t_state.isEnding = true;
        return nullptr;
    }
    void* room = std::malloc(sizeof(CBlockCache));
    if (room == nullptr) {
        endOutOfMemory();
    }
    auto* cache = new (room) CBlockCache;
    cache->m_next = g_caches;
    if (g_caches != nullptr) {
        g_caches->m_before = cache;
    }
    g_caches = cache;
    t_state.cache = cache;
    return cache;
}

/// The cache of the calling thread, made if need be; null for a thread that has none any more.
CBlockCache* cacheOfThread()
{
    return t_state.cache != nullptr || t_state.isEnding ? t_state.cache : makeCache();
}

[[gnu::noinline]] void* allocateSlowly(std::uint8_t classNumber)
{
    if (CBlockCache* cache = cacheOfThread()) {
        return cache->takeSlowly(pools(), classNumber);
    }
    CBlockPool& pool = pools()[classNumber];
    CFreeBlock* batch = pool.takeBatch(classNumber);
    if (batch->next != nullptr) {
        batch->next->count = batch->count - 1;
        pool.giveBatch(batch->next);
    }
    return batch;
}

[[gnu::noinline]] void releaseSlowly(void* block, std::uint8_t classNumber) noexcept
{
    CBlockCache* cache = cacheOfThread();
    if (cache == nullptr) {
        pools()[classNumber].giveBatch(new (block) CFreeBlock{nullptr, nullptr, 1});
        return;
    }
    if (!cache->give(block, classNumber)) {
        cache->giveSlowly(pools(), block, classNumber);
    }
}

[[gnu::noinline]] void* allocateLarge(std::size_t size)
{
    constexpr std::size_t kOverhead = kLargeHeader + kAlignment - 1;
    auto* raw = size <= static_cast<std::size_t>(-1) - kOverhead
                    ? static_cast<unsigned char*>(std::malloc(size + kOverhead))
                    : nullptr;
    if (raw == nullptr) {
        endOutOfMemory();
    }
    // Each byte says how far it is from the start: the one that ends up in front of the size tells the way back.
    for (unsigned char i = 0; i < kAlignment; ++i) {
        raw[i] = i;
    }
    const std::size_t toAlign = (0 - (reinterpret_cast<std::uintptr_t>(raw) + kLargeHeader)) & (kAlignment - 1);
    unsigned char* block = raw + kLargeHeader + toAlign;
    std::memcpy(block - kLargeHeader + 1, &size, sizeof(size));
    block[-1] = kLargeTag;
    return block;
}

std::uint8_t tagOf(const void* block) noexcept
{
    return static_cast<const unsigned char*>(block)[-1];
}

void freeLarge(void* block) noexcept
{
    unsigned char* distance = static_cast<unsigned char*>(block) - kLargeHeader;
    std::free(distance - *distance);
}

std::size_t sizeOf(const void* block) noexcept
{
    if (tagOf(block) != kLargeTag) {
        return (std::size_t{tagOf(block)} + 1) * kAlignment;
    }
    std::size_t size = 0;
    std::memcpy(&size, static_cast<const unsigned char*>(block) - kLargeHeader + 1, sizeof(size));
    return size;
}

} // namespace

void* CQrbMemAllocator::allocate(std::size_t size)
{
    CThreadState& state = t_state;
    ++state.allocateCount;
    if (size > kMaxPooledSize) [[unlikely]] {
        return allocateLarge(size);
    }
    const std::uint8_t classNumber = classOf(size);
    if (state.cache != nullptr) [[likely]] {
        if (void* block = state.cache->take(classNumber)) [[likely]] {
            return block;
        }
    }
    return allocateSlowly(classNumber);
}

void CQrbMemAllocator::release(void* block) noexcept
{
    if (block == nullptr) {
        return;
    }
    const std::uint8_t tag = tagOf(block);
    if (tag == kLargeTag) [[unlikely]] {
        freeLarge(block);
        return;
    }
    CBlockCache* cache = t_state.cache;
    if (cache == nullptr || !cache->give(block, tag)) [[unlikely]] {
        releaseSlowly(block, tag);
    }
}

void* CQrbMemAllocator::reallocate(void* block, std::size_t size)
{
    void* moved = allocate(size);
    if (block != nullptr) {
        std::memcpy(moved, block, std::min(sizeOf(block), size));
        release(block);
    }
    return moved;
}

void CQrbMemAllocator::prefill(std::size_t size, std::size_t count)
{
    if (size <= kMaxPooledSize) {
        const std::uint8_t classNumber = classOf(size);
        pools()[classNumber].prefill(classNumber, count);
    }
}

std::size_t CQrbMemAllocator::chunkCount() noexcept
{
    CBlockPools* present = g_pools.load(std::memory_order_acquire);
    return present != nullptr ? present->chunkCount() : 0;
}

namespace {

/// Under the lock of the caches.
std::size_t destroyPools() noexcept
{
    CBlockPools* present = g_pools.load(std::memory_order_acquire);
    if (present == nullptr) {
        return 0;
    }
    for (CBlockCache* cache = g_caches; cache != nullptr; cache = cache->m_next) {
        cache->flush(*present);
    }
    const std::size_t missing = present->freeChunksIfWhole();
    if (missing == 0) {
        g_pools.store(nullptr, std::memory_order_release);
        present->~CBlockPools();
        std::free(present);
    }
    return missing;
}

} // namespace

std::size_t CQrbMemAllocator::destroyAll() noexcept
{
    const std::lock_guard guard(g_cachesLock);
    return destroyPools();
}

void CQrbMemAllocator::destroyAllIfAlone() noexcept
{
    // A thread that comes in only now has no cache yet and waits for the lock.
    const std::lock_guard guard(g_cachesLock);
    if (g_caches == nullptr || (g_caches == t_state.cache && g_caches->m_next == nullptr)) {
        destroyPools();
    }
}

void CQrbMemAllocator::leaveThreads() noexcept
{
    const std::lock_guard guard(g_cachesLock);
    g_threadEnd.dismiss();
}

void CQrbMemAllocator::leaveProcess() noexcept
{
    leaveThreads();
    const std::lock_guard guard(g_cachesLock);
    while (g_caches != nullptr) {
        CBlockCache* cache = g_caches;
        unlinkCache(*cache);
        if (CBlockPools* present = g_pools.load(std::memory_order_acquire)) {
            cache->flush(*present);
        }
        std::free(cache);
    }
    t_state.cache = nullptr;
    destroyPools();
}

#endif

} // namespace qrb
