// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CSampleBufferPool.h"

#include "Core/CQrbMemAllocator.h"

#include <cstdint>
#include <gtest/gtest.h>

namespace qrb {

TEST(CSampleBufferPool, ABufferReturnsWithItsLastReferenceAndServesItsBinAgain)
{
    CSampleBufferPool pool;
    CSampleBuffer a = pool.get(64); // exactly one bin of 512 bytes
    const double* samples = a.data();
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(samples) % 16, 0u);
    EXPECT_EQ(a.capacity(), 64);
    CSampleBuffer b = a;
    EXPECT_EQ(a, b);
    EXPECT_FALSE(a.isUnique());
    a.clear();
    EXPECT_TRUE(b.isUnique());
    EXPECT_EQ(pool.usedCount(), 1);
    b = pool.get(65); // the next bin, so the first buffer rests
    EXPECT_NE(b.data(), samples);
    EXPECT_EQ(b.capacity(), 128);
    EXPECT_EQ(pool.get(1).data(), samples);
    EXPECT_EQ(pool.usedCount(), 1);
}

TEST(CSampleBufferPool, LargeBuffersShareAListAndAreReplacedWhenTooSmall)
{
    CSampleBufferPool pool;
    EXPECT_EQ(pool.get(4096).capacity(), 4096); // the last bin
    const std::uint64_t before = CQrbMemAllocator::allocateCount();
    (void)pool.get(5000);
    (void)pool.get(4999);
    EXPECT_EQ(CQrbMemAllocator::allocateCount(), before + 1);
    CSampleBuffer large = pool.get(9000);
    EXPECT_GE(large.capacity(), 9000);
    large.data()[8999] = 1.0;
    EXPECT_EQ(CQrbMemAllocator::allocateCount(), before + 2);
}

TEST(CSampleBufferPool, AWiderBufferServesWhereABinHasRunOutAndStaysWide)
{
    CSampleBufferPool pool;
    pool.prefill(512, 1);
    pool.prefill(100, 1);
    const std::uint64_t before = CQrbMemAllocator::allocateCount();
    for (int round = 0; round < 2; ++round) {
        const CSampleBuffer nearest = pool.get(30);
        const CSampleBuffer next = pool.get(30);
        EXPECT_EQ(nearest.capacity(), 128);
        EXPECT_EQ(next.capacity(), 512);
    }
    EXPECT_EQ(CQrbMemAllocator::allocateCount(), before);
    const CSampleBuffer whole = pool.get(512);
    EXPECT_EQ(CQrbMemAllocator::allocateCount(), before);
    const CSampleBuffer own = pool.get(130);
    EXPECT_EQ(own.capacity(), 192);
}

TEST(CSampleBufferPool, PrefilledSizesAllocateNothing)
{
    CSampleBufferPool pool;
    pool.prefill(512, 2);
    const std::uint64_t before = CQrbMemAllocator::allocateCount();
    CSampleBuffer a = pool.getSilence(512);
    CSampleBuffer b = pool.get(500);
    EXPECT_EQ(CQrbMemAllocator::allocateCount(), before);
    EXPECT_EQ(a.data()[511], 0.0);
    b = a; // assigning to itself and over another both keep the counts right
    b = *&b;
    a.clear();
    b.clear();
    EXPECT_EQ(pool.usedCount(), 0);
}

} // namespace qrb
