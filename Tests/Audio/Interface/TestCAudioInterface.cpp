// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Interface/CParamInterfaceExchange.h"
#include "Audio/Viz/CAudioInterfaceVizProcessor.h"
#include "Core/CInputStream.h"
#include "Core/CLoopEventBridge.h"
#include "Core/CStdEventBridge.h"
#include "Platform/CMessageLoop.h"
#include "Platform/CSystemThread.h"
#include "Tests/Audio/AudioParamWorld.h"
#include "Tests/Audio/Interface/CInterfaceWorld.h"
#include "Tests/Audio/Presets/CPresetWorld.h"

#include <algorithm>
#include <atomic>

namespace qrb {

namespace {

constexpr const char* kMaster = "plugin.master";

class CVizNotes : public CAudioInterfaceVizProcessor {
public:
    CErrorPtr onStartViz() override { return note("start;"); }
    CErrorPtr onStopViz() override { return note("stop;"); }
    CErrorPtr onClearClient() override { return note("clear;"); }
    CErrorPtr onVizData(CInputStream& in) override
    {
        double time = -1.0;
        std::int32_t count = -1;
        QRB_TRY(in.readDouble(time));
        QRB_TRY(in.readInt32(count));
        return note("data " + std::to_string(count) + ";");
    }
    CErrorPtr onExportSlotNames(CInputStream&) override { return note("names;"); }

    std::string notes;

private:
    CErrorPtr note(const std::string& text)
    {
        notes += text;
        return {};
    }
};

bool isReported(const CInterfaceWorld& world, const char* text)
{
    return std::ranges::any_of(world.logLines(),
                               [text](const std::string& line) { return line.find(text) != std::string::npos; });
}

} // namespace

TEST(TestCAudioInterface, AClientKnowsTheSetupAndFollowsIt)
{
    CInterfaceWorld world;
    CClientTree tree(world);
    EXPECT_EQ(tree.client->getInternalChannelCount(), 2);
    EXPECT_EQ(tree.client->getGroupName(2).toUtf8(), "3");
    tree.pull();
    EXPECT_EQ(tree.client->getInternalChannelCount(), 8);
    EXPECT_EQ(tree.client->getGroupCount(), 4);
    EXPECT_EQ(tree.client->getInputChannelCount(), 5);
    EXPECT_EQ(tree.client->getOutputChannelCount(), 6);
    EXPECT_EQ(tree.client->getSidechainChannelCount(), 1);
    EXPECT_EQ(tree.client->getSampleRate(), 96000.0);
    EXPECT_EQ(tree.client->getGroupName(2).toUtf8(), "Rear");
    world.provider.inputs = 3;
    world.base.tellSetup();
    world.param("io-params.group-names").setString(0, 2, "Back");
    tree.pull();
    EXPECT_EQ(tree.client->getInputChannelCount(), 3);
    EXPECT_EQ(tree.client->getGroupName(2).toUtf8(), "Back");
    tree.client->importChannelLabels();
    EXPECT_EQ(world.provider.calls, "import;");
}

TEST(TestCAudioInterface, VisualisationReachesTheProcessorAndStopsWithTheClient)
{
    CInterfaceWorld world;
    CClientTree tree(world);
    CVizNotes viz;
    tree.client->setVizProcessor(&viz);
    const CAudioParam& enable = world.params.getParam("meter-enable");
    const std::int32_t id = tree.client->listenViz(-1, "meter");
    EXPECT_EQ(enable.value(), 1.0);
    tree.client->requestVizData(1.0);
    tree.client->requestExportSlotNames();
    world.base.startViz();
    world.base.clearClients();
    world.base.stopViz();
    tree.pull();
    EXPECT_EQ(viz.notes, "data 0;names;start;clear;stop;");
    tree.client->unlistenViz(id);
    EXPECT_EQ(enable.value(), 0.0);
    static_cast<void>(tree.client->listenViz(-1, "meter"));
    tree.release();
    EXPECT_EQ(enable.value(), 0.0);
}

TEST(TestCAudioInterface, AnEngineThatGoesFirstLeavesItsClientsInPeace)
{
    CInterfaceWorld world;
    CClientTree tree(world);
    CParamMirror gain;
    CRegistryMirror master;
    const std::int32_t gainId = tree.client->listenParam("plugin.modMain.gain", gain);
    const std::int32_t masterId = tree.client->listenRegistry(kMaster, master);
    static_cast<void>(tree.client->createUndoData("Open", false, -1));
    tree.pull();
    world.base.setDataProvider(nullptr);
    world.releaseEngine();
    tree.client->resetParam(gainId, 0, 0, 0, false);
    EXPECT_TRUE(isReported(world, "No base object defined."));
    const std::size_t lines = world.logLines().size();
    for (int i = 0; i < 100; ++i)
        tree.client->requestVizData(1.0);
    EXPECT_EQ(world.logLines().size(), lines); // told once
    EXPECT_NE(errorText(tree.client->activatePreset(masterId, numberPreset("main:x", {}), -1)), "");
    tree.pull();
    tree.release();
}

TEST(TestCAudioInterface, ARegistryThatGoesFirstIsTold)
{
    CInterfaceWorld world;
    CClientTree tree(world);
    CRegistryMirror mirror;
    const std::int32_t id = tree.client->listenRegistry(kMaster, mirror);
    CTestModule::find(world.root, kMaster).release();
    EXPECT_NE(errorText(tree.client->activatePreset(id, numberPreset("main:x", {}), -1))
                  .find("Param registry object 'plugin.master' is NULL."),
              std::string::npos);
}

TEST(TestCAudioInterface, AClientThatDoesNotPullCostsWhatItFollowsAndCatchesUp)
{
    CInterfaceWorld world;
    CClientTree tree(world);
    const CParamInterfaceExchange& exchange = *world.connector.exchange();
    const std::uint32_t id = tree.connector->clientId();
    CParamMirror list;
    CRegistryMirror master;
    static_cast<void>(tree.client->listenParam("plugin.modMain.list", list));
    const std::int32_t masterId = tree.client->listenRegistry(kMaster, master);
    for (int i = 0; i < 20000; ++i)
        world.param("list").setElement(i % 3, i % 5, i % 10);
    EXPECT_LT(exchange.waitingBytes(id), 16384u);
    tree.pull();
    EXPECT_EQ(list.text(), world.text("list"));

    // Answers stand for themselves: too many of them empty the queue.
    const std::string big(60000, 'x');
    world.param("preset-name").setString(0, 0, big.c_str());
    bool isOverrun = false;
    for (std::size_t before = 0; !isOverrun; before = exchange.waitingBytes(id)) {
        tree.client->requestPreset(masterId, 0, false, -1, -1);
        isOverrun = exchange.waitingBytes(id) < before;
        ASSERT_LE(exchange.waitingBytes(id), CParamInterfaceQueue::kMaxBytes);
    }
    // A group that goes meanwhile goes at the client as well.
    EXPECT_EQ(errorText(world.master.activatePreset(numberPreset("main:x", {{"list", 5.0}}), nullptr, -1)), "");
    EXPECT_EQ(world.text("list"), "5.000000,;");
    static_cast<void>(master.take());
    tree.pull();
    EXPECT_EQ(list.text(), world.text("list"));
    EXPECT_NE(master.take(), "");
    EXPECT_EQ(tree.client->getInputChannelCount(), 5);
    EXPECT_EQ(exchange.waitingBytes(id), 0u);
    tree.release();
    EXPECT_FALSE(exchange.hasClient(id));
}

TEST(TestCAudioInterface, AConnectorFetchesOnATimerOfItsRate)
{
    CInterfaceWorld world;
    double now = 0.0;
    platform::CMessageLoop loop([&now] { return now; });
    CClientTree tree(world);
    CStdEventBridge* handler = nullptr;
    ASSERT_FALSE(tree.root().createChild(handler, "ui:ui-event-bridge", "bridge", ERequireTemplate::no));
    CLoopEventBridge bridge(loop, *handler);
    tree.root().setEventBridge(&bridge);
    const auto runTo = [&](double time) {
        now = time;
        loop.pump();
        loop.pump(); // what the timer has posted
        return tree.client->getInputChannelCount();
    };
    EXPECT_EQ(errorText(tree.connector->setAttr("fps", "20", ESetter::now)), "");
    EXPECT_EQ(runTo(0.04), 2);
    EXPECT_EQ(runTo(0.05), 5);
    EXPECT_EQ(errorText(tree.connector->setAttr("fps", "10", ESetter::now)), "");
    world.provider.inputs = 3;
    world.base.tellSetup();
    EXPECT_EQ(runTo(0.14), 5);
    EXPECT_EQ(runTo(0.16), 3);
    tree.release();
}

TEST(TestCAudioInterface, TwoClientsAndTheEngineWorkAtOnceAndAgreeAtTheEnd)
{
    constexpr int kRounds = 400;
    CInterfaceWorld world;
    std::atomic<int> working{3};
    std::atomic<bool> isQuiet{false};
    std::atomic<int> compared{0};
    const auto edit = [&](std::uint32_t seed) {
        CClientTree tree(world);
        CParamMirror gain;
        CParamMirror list;
        CRegistryMirror master;
        const std::int32_t gainId = tree.client->listenParam("plugin.modMain.gain", gain);
        std::int32_t listId = tree.client->listenParam("plugin.modMain.list", list);
        const std::int32_t masterId = tree.client->listenRegistry(kMaster, master);
        tree.pull();
        for (int i = 0; i < kRounds; ++i) {
            seed = seed * 1664525 + 1013904223;
            const std::int32_t undo = tree.client->createUndoData("Edit", true, 1);
            const AudioParamRecord one(gain.info.format, 0, 0, {(seed >> 8 & 255) / 256.0});
            const AudioParamRecord many(list.info.format, static_cast<int>(seed >> 9 & 3),
                                        static_cast<int>(seed >> 11 & 3), {1.0 * (i % 10), 2.0}, (seed >> 14 & 7) == 0);
            tree.client->changeParam(gainId, one.update, undo);
            tree.client->changeParam(listId, many.update, undo);
            tree.client->submitUndoData(undo, {});
            if (i % 16 == 3)
                tree.client->setUndoHistoryPos(static_cast<int>(seed >> 20 & 15));
            if (i % 32 == 5)
                tree.client->setCurrentProgram(masterId, i / 32 % 2);
            if (i % 64 == 9)
                tree.client->exchangeShadowPreset(masterId);
            if (i % 50 == 11) {
                tree.client->unlistenParam(listId);
                listId = tree.client->listenParam("plugin.modMain.list", list);
            }
            tree.pull();
        }
        --working;
        while (!isQuiet)
            tree.pull();
        tree.pull();
        EXPECT_EQ(gain.text(), world.text("gain"));
        EXPECT_EQ(list.text(), world.text("list"));
        EXPECT_EQ(tree.client->getInputChannelCount(), 3);
        ++compared;
    };
    platform::CSystemThread first;
    platform::CSystemThread second;
    platform::CSystemThread audio;
    ASSERT_EQ(first.start(
                  "first", [&] { edit(1); }, platform::EThreadPriority::normal),
              0);
    ASSERT_EQ(second.start(
                  "second", [&] { edit(2); }, platform::EThreadPriority::normal),
              0);
    ASSERT_EQ(audio.start(
                  "audio",
                  [&] {
                      while (!isQuiet)
                          world.params.flushQueue();
                  },
                  platform::EThreadPriority::normal),
              0);
    for (int i = 0; i < kRounds; ++i) {
        world.param("list").setElement(i % 3, i % 4, i % 10);
        world.base.tellSetup();
        world.base.startViz();
        world.base.stopViz();
        world.params.runDeferred();
    }
    world.provider.inputs = 3;
    world.base.tellSetup();
    --working;
    while (working > 0)
        world.params.runDeferred();
    isQuiet = true;
    first.join();
    second.join();
    audio.join();
    EXPECT_EQ(compared, 2);
    EXPECT_FALSE(world.connector.hasClient(1) || world.connector.hasClient(2));
}

TEST(TestCAudioInterface, AnEngineMayGoWhileItsClientIsAtWork)
{
    CInterfaceWorld world;
    std::atomic<bool> isStarted{false};
    std::atomic<bool> isGone{false};
    platform::CSystemThread editor;
    ASSERT_EQ(editor.start(
                  "editor",
                  [&] {
                      CClientTree tree(world);
                      CParamMirror gain;
                      CRegistryMirror master;
                      const std::int32_t masterId = tree.client->listenRegistry(kMaster, master);
                      while (!isGone) {
                          const std::int32_t id = tree.client->listenParam("plugin.modMain.gain", gain);
                          tree.client->resetParam(id, -1, -1, 0, false);
                          tree.client->setCurrentProgram(masterId, 1);
                          tree.client->unlistenParam(id);
                          tree.pull();
                          isStarted = true;
                      }
                  },
                  platform::EThreadPriority::normal),
              0);
    while (!isStarted)
        world.params.runDeferred();
    world.base.disconnect();
    world.releaseEngine();
    isGone = true;
    editor.join();
}

} // namespace qrb
