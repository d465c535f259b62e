// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CQrbMemAllocator.h"

#include "Core/CBlockPools.h"
#include "Core/CCheckedObject.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <barrier>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <random>
#include <thread>
#include <vector>

namespace qrb {
namespace {

using CAlloc = CQrbMemAllocator;

/// Fills a block with its owner's mark, or tells whether the mark still stands everywhere.
struct CMarked {
    std::uint32_t* words;
    std::size_t count;
    std::uint32_t mark;

    CMarked(std::size_t size, std::uint32_t owner)
        : words(static_cast<std::uint32_t*>(CAlloc::allocate(size))), count(size / 4), mark(owner)
    {
        std::fill_n(words, count, mark);
    }
    [[nodiscard]] bool isWhole() const
    {
        return std::all_of(words, words + count, [&](std::uint32_t word) { return word == mark; });
    }
};

TEST(CQrbMemAllocator, BlocksAreAlignedApartAndKeepTheirContentWhenTheyMove)
{
    std::vector<CMarked> blocks;
    for (std::uint32_t size = 0; size <= 4200; size += 4) {
        blocks.emplace_back(size, size + 1);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(blocks.back().words) % 16, 0U);
    }
    for (CMarked& block : blocks) {
        ASSERT_TRUE(block.isWhole()) << block.count;
        block.words = static_cast<std::uint32_t*>(CAlloc::reallocate(block.words, 8200 - block.count * 4));
        block.count = std::min(block.count, 2050 - block.count);
        ASSERT_TRUE(block.isWhole());
        CAlloc::release(block.words);
    }
    CAlloc::release(nullptr);
    CAlloc::release(CAlloc::reallocate(nullptr, 40));
}

TEST(CQrbMemAllocator, CountsTheCallsOfTheOwnThread)
{
    const std::uint64_t before = CAlloc::allocateCount();
    CAlloc::release(CAlloc::allocate(10));
    CAlloc::release(CAlloc::reallocate(nullptr, 5000));
    std::thread([] { CAlloc::release(CAlloc::allocate(1)); }).join();
    delete new CCheckedObject;
    EXPECT_EQ(CAlloc::allocateCount() - before, 3U);
}

TEST(CQrbMemAllocator, NoBlockIsHandedOutTwiceWhileThreadsPassThemAround)
{
    constexpr int kThreads = 4;
    constexpr int kSteps = 60000;
    // Blocks wait here to be taken and released by whichever thread comes along.
    std::array<std::atomic<CMarked*>, 64> exchange{};
    std::atomic<int> broken{0};
    const auto retire = [&](CMarked* block) {
        if (block != nullptr) {
            broken += block->isWhole() ? 0 : 1;
            std::fill_n(block->words, block->count, 0xDEADBEEFU);
            CAlloc::release(block->words);
            delete block;
        }
    };
    const auto work = [&](std::uint32_t thread) {
        std::mt19937 random(thread);
        std::vector<CMarked*> own(200, nullptr);
        for (std::uint32_t step = 0; step < kSteps; ++step) {
            const std::size_t size = random() % 8 == 0 ? 16 * (1 + random() % 260) : 16 * (1 + random() % 4);
            auto* block = new CMarked(size, thread << 24 | step);
            CMarked*& slot = own[random() % own.size()];
            if (random() % 3 == 0) {
                retire(exchange[random() % exchange.size()].exchange(block));
            } else {
                retire(std::exchange(slot, block));
            }
        }
        for (CMarked* block : own) {
            retire(block);
        }
    };
    for (int round = 0; round < 3; ++round) { // later rounds meet blocks that ended threads left
        std::vector<std::thread> threads;
        for (std::uint32_t i = 0; i < kThreads; ++i) {
            threads.emplace_back(work, i + 1);
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
    }
    for (auto& slot : exchange) {
        retire(slot.exchange(nullptr));
    }
    EXPECT_EQ(broken, 0);
}

#if !QRB_SYSTEM_ALLOCATOR

std::uint8_t tagOf(const void* block)
{
    return static_cast<const std::uint8_t*>(block)[-1];
}

TEST(CBatchStack, ABatchIsInOneHandAtATime)
{
    // Two batches in each hand and put back in the other order: what a head without a tag falls for.
    std::array<CFreeBlock, 6> blocks{};
    std::array<std::atomic<int>, 6> owners{};
    CBatchStack stack;
    for (CFreeBlock& block : blocks) {
        block.count = 1;
        stack.push(&block);
    }
    std::atomic<int> broken{0};
    const auto indexOf = [&](const CFreeBlock* block) { return static_cast<std::size_t>(block - blocks.data()); };
    std::barrier start(4);
    const auto work = [&] {
        start.arrive_and_wait();
        for (int step = 0; step < 500000; ++step) {
            std::array<CFreeBlock*, 2> taken{stack.pop(), stack.pop()};
            for (CFreeBlock* block : taken) {
                broken += block != nullptr && owners[indexOf(block)].exchange(1) != 0 ? 1 : 0;
            }
            for (CFreeBlock* block : taken) {
                if (block != nullptr) {
                    owners[indexOf(block)] = 0;
                    stack.push(block);
                }
            }
        }
    };
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back(work);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(broken, 0);
    EXPECT_EQ(stack.blockCount(), 6);
}

TEST(CQrbMemAllocator, TagTellsTheClassAndLargeBlocksCarrySizeAndDistance)
{
    for (const auto& [size, tag] :
         {std::pair{0U, 0U}, {16U, 0U}, {17U, 1U}, {4064U, 253U}, {4080U, 254U}, {4081U, 255U}}) {
        void* block = CAlloc::allocate(size);
        EXPECT_EQ(tagOf(block), tag) << size;
        CAlloc::release(block);
    }
    auto* large = static_cast<std::uint8_t*>(CAlloc::allocate(5000));
    std::uint64_t size = 0;
    std::memcpy(&size, large - 9, sizeof(size));
    EXPECT_EQ(size, 5000U);
    EXPECT_LT(large[-10], 16);
    CAlloc::release(large);
}

TEST(CQrbMemAllocator, ChunksDoublePrefillNeedsNoMoreAndAllComesBack)
{
    // Other tests of this program may keep something, but hardly of this size.
    constexpr std::size_t kSize = 3000;
    const std::size_t keptByOthers = CAlloc::destroyAll();
    const std::size_t before = CAlloc::chunkCount();
    std::vector<void*> blocks(127);
    for (int round = 0; round < 2; ++round) {
        for (void*& block : blocks) {
            block = CAlloc::allocate(kSize);
        }
        EXPECT_EQ(CAlloc::chunkCount() - before, 7U); // 1 + 2 + 4 ... + 64 blocks
        for (void* block : blocks) {
            CAlloc::release(block);
        }
    }
    CAlloc::prefill(4080, 300);
    const std::size_t chunks = CAlloc::chunkCount();
    std::thread([] {
        std::vector<void*> taken(300);
        for (void*& block : taken) {
            block = CAlloc::allocate(4080);
        }
        for (void* block : taken) {
            CAlloc::release(block);
        }
    }).join();
    CAlloc::prefill(4080, 300); // the ended thread's blocks are there again
    EXPECT_EQ(CAlloc::chunkCount(), chunks);

    CMarked kept(kSize, 5);
    EXPECT_EQ(CAlloc::destroyAll() - keptByOthers, 1U);
    EXPECT_EQ(CAlloc::chunkCount() - before, 7U); // those of the kept block's size stay
    EXPECT_TRUE(kept.isWhole());
    CAlloc::release(kept.words);
    EXPECT_EQ(CAlloc::destroyAll(), keptByOthers);
    EXPECT_EQ(CAlloc::chunkCount(), before);
    CMarked again(kSize, 5);
    EXPECT_TRUE(again.isWhole());
    CAlloc::release(again.words);

    std::barrier together(2);
    std::thread other([&] {
        CAlloc::release(CAlloc::allocate(1));
        together.arrive_and_wait();
        together.arrive_and_wait();
    });
    together.arrive_and_wait();
    CAlloc::destroyAllIfAlone();
    EXPECT_GT(CAlloc::chunkCount(), before); // the other thread may be at work
    together.arrive_and_wait();
    other.join();
    CAlloc::destroyAllIfAlone();
    EXPECT_EQ(CAlloc::chunkCount(), before);
}

#endif

} // namespace
} // namespace qrb
