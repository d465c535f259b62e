// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CAppData.h"
#include "Core/CChunkId.h"
#include "Platform/CSystemThread.h"
#include "Platform/Folders.h"
#include "Tests/Audio/AudioParamWorld.h"

#include <atomic>
#include <filesystem>
#include <unistd.h>

namespace qrb {
namespace {

/// A folder of its own for the user's data, gone again with the test.
class Folders : public platform::IFolders {
public:
    Folders()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "thumpcraft-shared-XXXXXX").string();
        path = ::mkdtemp(pattern.data());
    }
    ~Folders() override { std::filesystem::remove_all(path); }
    std::string userDataFolder() override { return path; }
    std::string machineDataFolder() override { return {}; }
    std::string modulePath() override { return {}; }

    std::string path;
};

struct CSharedParamTest : testing::Test {
    Folders folders;
    AudioParamWorld world{&folders};
    CAppData& store{*CAppData::findScope("local")};

    CAudioParam& linked(CAudioParamCollector& collector, const char* name)
    {
        CAudioParam& param = collector.getParam(name);
        param.bindInfo(world.info(name));
        collector.addSharedParam(name, store, name);
        return param;
    }
};

TEST_F(CSharedParamTest, AValueSetInOneInstanceReachesTheOther)
{
    CAudioParamCollector& other = AudioParamWorld::paramsOf(world.newInstance());
    for (const char* const name : {"one", "text", "raw"}) {
        linked(world.collector, name);
        linked(other, name);
    }
    int wakes = 0;
    other.setWakeHook([&] { ++wakes; });
    EXPECT_EQ(wakes, 1); // binding beside a link is work already
    other.runDeferred();
    world.collector.getParam("one").setValue(0.25);
    world.collector.getParam("text").setString(0, 0, "Left");
    world.collector.getParam("raw").setRaw(0, 0, std::vector<std::uint8_t>{1, 2});
    // Nothing is written while a parameter is held, and the other side only marks.
    EXPECT_EQ(store.getString("one", "none"), "none");
    world.collector.runDeferred();
    EXPECT_EQ(store.getString("one"), "0.25");
    EXPECT_EQ(store.getString("text"), "Left");
    EXPECT_EQ(store.readData("raw", chunkId("adat")), (CByteArray{1, 2}));
    EXPECT_EQ(other.getParam("one").value(), 0.5);
    EXPECT_EQ(wakes, 2);
    other.runDeferred();
    EXPECT_EQ(other.getParam("one").value(), 0.25);
    EXPECT_EQ(other.getParam("text").text(), "Left");
    const CAudioParamGuard guard(other);
    EXPECT_EQ(other.getParam("raw").editStorage(guard).raw(0, 0).size(), 2u);
    // Taking it over is no change that would be written again.
    EXPECT_FALSE(other.hasDeferred());
}

TEST_F(CSharedParamTest, StartsFromTheStoredBlockOnceItsParameterIsBound)
{
    store.setString("one", "0.75", nullptr);
    store.setString("list", "no number", nullptr);
    world.collector.addSharedParam("one", store, "one");
    world.collector.addSharedParam("one", store, "one");
    EXPECT_FALSE(world.collector.hasDeferred());
    world.collector.getParam("one").bindInfo(world.info("one"));
    EXPECT_TRUE(world.collector.hasDeferred());
    world.collector.runDeferred();
    EXPECT_EQ(world.collector.getParam("one").value(), 0.75);
    // A text that cannot be read leaves the parameter as it is; a missing one means the default.
    EXPECT_EQ(linked(world.collector, "list").value(), 1.0);
    CAudioParam& text = world.collector.getParam("text");
    text.bindInfo(world.info("text"));
    text.setString(0, 0, "changed");
    world.collector.addSharedParam("text", store, "text");
    EXPECT_EQ(text.text(), "L");
}

TEST_F(CSharedParamTest, InstancesOnThreadsOfTheirOwnDoNotBlockEachOther)
{
    CAudioParamCollector* const collectors[] = {&world.collector, &AudioParamWorld::paramsOf(world.newInstance())};
    for (CAudioParamCollector* const collector : collectors)
        linked(*collector, "one");
    const auto work = [](CAudioParamCollector& collector) {
        for (int i = 0; i < 100; ++i) {
            collector.getParam("one").setValue(i / 100.0);
            collector.runDeferred();
        }
    };
    platform::CSystemThread first;
    platform::CSystemThread second;
    ASSERT_EQ(first.start(
                  "first", [&] { work(*collectors[0]); }, platform::EThreadPriority::normal),
              0);
    ASSERT_EQ(second.start(
                  "second", [&] { work(*collectors[1]); }, platform::EThreadPriority::normal),
              0);
    first.join();
    second.join();
    for (CAudioParamCollector* const collector : collectors)
        collector->runDeferred();
    EXPECT_EQ(collectors[0]->getParam("one").value(), collectors[1]->getParam("one").value());
}

TEST_F(CSharedParamTest, AnInstanceMayGoWhileAnotherWritesWhatTheyShare)
{
    linked(world.collector, "one");
    std::atomic<bool> isDone{false};
    platform::CSystemThread writer;
    const auto write = [&] {
        for (int i = 0; !isDone; ++i) {
            world.collector.getParam("one").setValue(i % 100 / 100.0);
            world.collector.runDeferred();
        }
    };
    ASSERT_EQ(writer.start("writer", write, platform::EThreadPriority::normal), 0);
    for (int i = 0; i < 50; ++i) {
        CObject& instance = world.newInstance();
        CAudioParamCollector& other = AudioParamWorld::paramsOf(instance);
        std::atomic<int> wakes{0};
        other.setWakeHook([&wakes] { ++wakes; });
        linked(other, "one");
        other.runDeferred();
        world.module.releaseRoot(instance);
    }
    isDone = true;
    writer.join();
}

} // namespace
} // namespace qrb
