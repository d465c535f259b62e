// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParamPathTree.h"
#include "Core/CQrbMemAllocator.h"
#include "Platform/CSystemThread.h"
#include "Tests/Audio/AudioParamWorld.h"

#include <array>
#include <atomic>

namespace qrb {
namespace {

constexpr int kPaths = 1500;

CString pathOf(int number)
{
    return CString(("plugin.modMain.node#" + std::to_string(number) + ".gain").c_str());
}

TEST(CAudioParamPathTree, KeepsPathsOfOneHashApart)
{
    // Two pairs of texts with one hash each.
    for (const auto& [a, b] : {std::pair("costarring", "liquid"), std::pair("declinate", "macallums")}) {
        ASSERT_EQ(CString(a).hash(), CString(b).hash());
        CAudioParamPathTree tree;
        CAudioParamPathEntry& first = tree.add(std::make_unique<CAudioParamPathEntry>(a));
        EXPECT_EQ(tree.find(b), nullptr);
        CAudioParamPathEntry& second = tree.add(std::make_unique<CAudioParamPathEntry>(b));
        EXPECT_NE(&first, &second);
        EXPECT_EQ(&tree.add(std::make_unique<CAudioParamPathEntry>(a)), &first);
        EXPECT_EQ(tree.find(b), &second);
        EXPECT_EQ(tree.newest(), &second);
    }
}

TEST(CAudioParamPathTree, ThreadsThatMakeAndFindAgreeOnEveryParameter)
{
    AudioParamWorld world;
    CAudioParamCollector& params = world.collector;
    params.addRename("turning", pathOf(0));
    std::array<std::array<CAudioParam*, kPaths>, 3> seen{};
    std::atomic<int> made{0};
    const auto make = [&](std::size_t thread) {
        for (int i = 0; i < kPaths; ++i) {
            params.addRename("alias." + pathOf(i), pathOf(i));
            params.addRename("turning", pathOf(thread == 0 ? 0 : 1));
            seen[thread][static_cast<std::size_t>(i)] = &params.getParam(pathOf(i));
            if (thread == 0)
                made.store(i + 1, std::memory_order_release);
        }
    };
    platform::CSystemThread first;
    platform::CSystemThread second;
    ASSERT_EQ(first.start(
                  "maker", [&] { make(0); }, platform::EThreadPriority::normal),
              0);
    ASSERT_EQ(second.start(
                  "maker", [&] { make(1); }, platform::EThreadPriority::normal),
              0);
    for (int i = 0; i < kPaths; ++i) {
        if (i % 64 == 0) {
            while (made.load(std::memory_order_acquire) <= i) {
                const CString& path = params.getParam("turning").path();
                ASSERT_TRUE(path == pathOf(0) || path == pathOf(1));
            }
        }
        // Known paths are found at once, the others are made in a race with the makers.
        const bool isKnown = made.load(std::memory_order_acquire) > i;
        ASSERT_TRUE(!isKnown || params.findParam(pathOf(i)) != nullptr);
        ASSERT_TRUE(!isKnown || params.isRenamed("alias." + pathOf(i)));
        seen[2][static_cast<std::size_t>(i)] = &params.getParam(pathOf(i));
    }
    first.join();
    second.join();
    EXPECT_EQ(seen[0], seen[1]);
    EXPECT_EQ(seen[0], seen[2]);
    for (int i = 0; i < kPaths; ++i)
        EXPECT_EQ(&params.getParam("alias." + pathOf(i)), seen[0][static_cast<std::size_t>(i)]);
    CArray<CAudioParam*> all;
    params.listParams(all);
    EXPECT_EQ(all.size(), static_cast<std::size_t>(kPaths));
    EXPECT_TRUE(std::ranges::is_sorted(all.span(), {}, &CAudioParam::path));
}

} // namespace
} // namespace qrb
