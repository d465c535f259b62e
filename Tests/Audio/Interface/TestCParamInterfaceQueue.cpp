// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Interface/CParamInterfaceIds.h"
#include "Audio/Interface/CParamInterfaceQueue.h"
#include "Tests/Audio/AudioParamWorld.h"

#include <algorithm>

namespace qrb {

namespace {

CByteArray change(int listener, int element, double value)
{
    const Bytes bytes = Bytes() << "update-param" << listener << 0 << element << 1 << 0 << 1 << 0 << 0 << 0 << value;
    return CByteArray(std::span<const std::uint8_t>{bytes.data});
}

CByteArray message(const char* event, int field = 0)
{
    const Bytes bytes = Bytes() << event << field;
    return CByteArray(std::span<const std::uint8_t>{bytes.data});
}

std::vector<CByteArray> taken(CParamInterfaceQueue& queue)
{
    std::vector<CByteArray> all;
    for (CByteArray next; queue.takeFirst(next);)
        all.push_back(next);
    return all;
}

bool areSame(const std::vector<CByteArray>& a, const std::vector<CByteArray>& b)
{
    return std::ranges::equal(
        a, b, [](const CByteArray& x, const CByteArray& y) { return std::ranges::equal(x.span(), y.span()); });
}

} // namespace

TEST(TestCParamInterfaceQueue, TheNewestOfWhatIsSaidTwiceStands)
{
    CParamInterfaceQueue queue;
    for (int i = 0; i < 1000; ++i) {
        queue.append(change(1, i % 2, i));
        queue.append(message("start-viz"));
        queue.append(message("update-undo-history", i));
    }
    queue.append(change(2, 0, 5.0));
    queue.append(message("registry-data", 1));
    queue.append(message("registry-data", 1));
    EXPECT_EQ(queue.size(), 7u);
    EXPECT_TRUE(areSame(taken(queue), {change(1, 0, 998.0), change(1, 1, 999.0), message("start-viz"),
                                       message("update-undo-history", 999), change(2, 0, 5.0),
                                       message("registry-data", 1), message("registry-data", 1)}));
    EXPECT_EQ(queue.byteCount(), 0u);
}

TEST(TestCParamInterfaceQueue, ChangesDoNotCrossTheDescriptionOfTheirParameter)
{
    CParamInterfaceQueue queue;
    queue.append(change(1, 0, 1.0));
    queue.append(change(2, 0, 1.0));
    queue.append(message("update-param-info", 1));
    queue.append(change(1, 0, 2.0));
    queue.append(change(2, 0, 2.0));
    queue.append(change(1, 0, 3.0));
    EXPECT_TRUE(areSame(taken(queue),
                        {change(1, 0, 1.0), message("update-param-info", 1), change(2, 0, 2.0), change(1, 0, 3.0)}));
}

TEST(TestCParamInterfaceQueue, WhatIsTooMuchEmptiesTheQueueAndIsTold)
{
    CParamInterfaceQueue queue(200);
    queue.append(message("registry-data", 1));
    EXPECT_FALSE(queue.takeOverrun());
    for (int i = 0; i < 20; ++i)
        queue.append(message("registry-data", i));
    EXPECT_LE(queue.byteCount(), 200u);
    EXPECT_TRUE(queue.takeOverrun());
    EXPECT_FALSE(queue.takeOverrun());
    for (const int size : {0, 1, 3, 4, 5})
        queue.append(CByteArray(std::span<const std::uint8_t>{change(1, 0, 1.0).data(), std::size_t(size)}));
    EXPECT_FALSE(taken(queue).empty());
}

TEST(TestCParamInterfaceQueue, NumbersComeRoundAndLeaveOutWhatIsInUse)
{
    CParamInterfaceIds ids;
    const std::int32_t first = ids.take(0x8001);
    EXPECT_EQ(static_cast<std::uint32_t>(first), 0x80010001u);
    EXPECT_EQ(CParamInterfaceIds::clientOf(first), 0x8001u);
    for (std::uint32_t i = 2; i <= 0xffff; ++i)
        EXPECT_NE(ids.take(0x8001), 0);
    EXPECT_EQ(ids.take(0x8001), 0);
    ids.give(first + 4);
    EXPECT_EQ(ids.take(0x8001), first + 4);
}

} // namespace qrb
