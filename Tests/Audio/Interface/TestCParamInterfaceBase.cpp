// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParamUpdate.h"
#include "Tests/Audio/AudioParamWorld.h"
#include "Tests/Audio/Interface/CInterfaceWorld.h"
#include "Tests/Audio/Presets/CPresetWorld.h"

#include <cmath>
#include <limits>

namespace qrb {

namespace {

constexpr const char* kGain = "plugin.modMain.gain";
constexpr const char* kList = "plugin.modMain.list";
constexpr const char* kMaster = "plugin.master";

/// A world with two clients, each with mirrors of two parameters.
class TestCParamInterfaceBase : public testing::Test {
protected:
    struct CEditor {
        explicit CEditor(CInterfaceWorld& world)
            : tree(world), client(*tree.client), gainId(client.listenParam(kGain, gain)),
              listId(client.listenParam(kList, list))
        {
            tree.pull();
        }

        void set(std::int32_t id, const CParamMirror& mirror, int group, int element, std::vector<double> values,
                 std::int32_t undoId = 0)
        {
            const AudioParamRecord record(mirror.info.format, group, element, std::move(values));
            client.changeParam(id, record.update, undoId);
        }

        CClientTree tree;
        CAudioInterfaceClient& client;
        CParamMirror gain;
        CParamMirror list;
        std::int32_t gainId;
        std::int32_t listId;
    };

    CInterfaceWorld world;
    CEditor one{world};
    CEditor two{world};
};

} // namespace

TEST_F(TestCParamInterfaceBase, AListenerGetsDescriptionDefaultsAndAllGroupsOnce)
{
    EXPECT_EQ(one.listId, (1 << 16) + 3); // behind the group names of the client itself
    EXPECT_EQ(two.gainId, (2 << 16) + 2);
    EXPECT_EQ(one.list.text(), world.text("list"));
    EXPECT_EQ(one.list.info.definitionPath, "audio.modMain.list");
    EXPECT_EQ(one.list.values.value(5, 2), 3.0); // from the default elements
    EXPECT_EQ(one.tree.send((Bytes() << "listen-param" << kList << one.listId).data), "");
    one.tree.pull();
    EXPECT_EQ(one.list.infoCount, 1);
    EXPECT_EQ(one.list.valueCount, 3);
}

TEST_F(TestCParamInterfaceBase, AParameterThatIsBoundLaterTellsItsDescriptionThen)
{
    CParamMirror note;
    const std::int32_t id = one.client.listenParam("plugin.modMain.note", note);
    one.tree.pull();
    EXPECT_EQ(note.infoCount + note.valueCount, 0);
    world.bind("note");
    one.tree.pull();
    EXPECT_EQ(note.infoCount, 1);
    EXPECT_EQ(note.text(), "a,b,;");
    world.param("note").setString(1, 0, "late");
    one.client.unlistenParam(id);
    one.tree.pull(); // the listener is unknown by now, and so the message ends
    EXPECT_EQ(note.text(), "a,b,;");
}

TEST_F(TestCParamInterfaceBase, AChangeReachesBothClientsAndItsSender)
{
    one.set(one.listId, one.list, 1, 2, {5.0, 6.0});
    one.set(one.gainId, one.gain, 0, 0, {std::numeric_limits<double>::quiet_NaN()});
    for (CEditor* const each : {&one, &two}) {
        each->tree.pull();
        EXPECT_EQ(each->list.text(), world.text("list"));
        EXPECT_EQ(each->gain.text(), world.text("gain"));
    }
    EXPECT_EQ(one.list.values.value(1, 3), 6.0);
    EXPECT_EQ(one.gain.values.value(0, 0), 0.5); // the default stands for what is no number
    EXPECT_EQ(world.history(), "0");

    const std::string before = world.state();
    CAudioParamFormat wrong = one.list.info.format;
    wrong.elementSize = 2;
    const AudioParamRecord record(wrong, 0, 0, {1.0, 1.0});
    one.client.changeParam(one.listId, record.update, 0);
    one.set(one.listId + 100, one.list, 0, 0, {8.0});
    EXPECT_EQ(world.state(), before);
    two.client.resetParam(two.listId, 1, 3, 0, true);
    one.tree.pull();
    EXPECT_EQ(one.list.values.value(1, 3), 1.0);

    CParamMirror attack;
    const std::int32_t attackId = one.client.listenParam("plugin.modMain.gate-params.attack", attack);
    one.tree.pull();
    one.set(attackId, attack, 0, 0, {3.0}); // the panel's preset is none of the list any more
    EXPECT_EQ(world.text("gate-params.mode-name"), "User,;");
}

TEST_F(TestCParamInterfaceBase, AGestureIsOneEntryAndTheHostHearsItsBeginAndEnd)
{
    const std::int32_t undo = one.client.createUndoData("Drag", false, -1);
    for (const double value : {4.0, 5.0, 6.0})
        one.set(one.listId, one.list, 1, 0, {value, 1.0}, undo);
    one.set(one.gainId, one.gain, 0, 0, {1.0}, undo);
    const std::string begins = "begin list 1:0;begin list 1:1;begin gain 0:0;";
    EXPECT_EQ(world.provider.calls, begins);
    EXPECT_EQ(world.history(), "0");
    one.client.submitUndoData(undo, "List");
    EXPECT_EQ(world.history(), "List|1");
    EXPECT_EQ(world.provider.calls.size(), begins.size() * 2 - 6); // "end" is shorter than "begin", three times
    EXPECT_NE(world.provider.calls.find("end gain 0:0;"), std::string::npos);

    two.tree.pull();
    CArray<CString> lines;
    std::int32_t position = 0;
    two.client.getUndoHistory(lines, position);
    EXPECT_EQ(lines.size(), 2u);
    EXPECT_EQ(position, 1);
    two.client.setUndoHistoryPos(0);
    EXPECT_EQ(world.text("gain"), "0.250000,;");

    const std::int32_t removed = one.client.createUndoData("Gone", false, -1);
    one.set(one.gainId, one.gain, 0, 0, {0.125}, removed);
    one.client.removeUndoData(removed);
    EXPECT_EQ(world.history(), "List|0");
    EXPECT_EQ(world.text("gain"), "0.125000,;");
    one.client.resetParam(one.gainId, 0, 0, one.client.createUndoData("Reset", false, -1), false);
    one.client.submitUndoData(one.gainId - 1, {}); // a number of something else
    EXPECT_EQ(world.history(), "List|0");
}

TEST_F(TestCParamInterfaceBase, AClientThatGoesLeavesNothingButItsGesture)
{
    const std::int32_t undo = one.client.createUndoData("Cut short", false, -1);
    one.set(one.gainId, one.gain, 0, 0, {1.0}, undo);
    one.tree.release();
    EXPECT_EQ(world.history(), "Cut short|1");
    EXPECT_EQ(world.provider.calls, "begin gain 0:0;end gain 0:0;");
    EXPECT_FALSE(world.connector.hasClient(1));
    world.param("gain").setValue(0.0);
    two.tree.pull();
    EXPECT_EQ(two.gain.text(), "0.000000,;");
    EXPECT_TRUE(world.connector.hasClient(2));
}

TEST_F(TestCParamInterfaceBase, RegistriesAnswerTheirListeners)
{
    CRegistryMirror mine;
    CRegistryMirror others;
    const std::int32_t id = one.client.listenRegistry(kMaster, mine);
    EXPECT_EQ(mine.take(), "connected;");
    static_cast<void>(two.client.listenRegistry(kMaster, others));
    one.tree.pull();
    EXPECT_EQ(mine.take(), "session main main:Soft main:Loud @0;factory main main:Soft main:Loud @-1;");
    two.tree.pull();
    EXPECT_NE(others.take(), "");

    one.client.setCurrentProgram(id, 1);
    one.client.renamePreset(id, 0, "Mild");
    for (CEditor* const each : {&one, &two})
        each->tree.pull();
    EXPECT_EQ(mine.take(), "session main main:Mild main:Loud @1;");
    EXPECT_EQ(others.take(), "session main main:Mild main:Loud @1;");
    EXPECT_EQ(two.gain.text(), "0.750000,;");

    one.client.requestPreset(id, 7, false, -1, -1);
    one.client.requestBank(id, 8, true);
    one.tree.pull();
    EXPECT_EQ(mine.take(), "preset 7 main:Loud;bank 8 Factory ROM 2;");
    one.client.updateShadowPreset(id);
    one.client.activateFactoryPreset(id, 0);
    EXPECT_EQ(world.text("gain"), "0.250000,;");
    one.client.exchangeShadowPreset(id);
    EXPECT_EQ(world.text("gain"), "0.750000,;");
    EXPECT_EQ(errorText(one.client.activatePreset(id, numberPreset("main:Mine", {{"gain", 0.5}}), -1)), "");
    EXPECT_EQ(errorText(one.client.setDefaultPreset(id, numberPreset("main:Mine", {{"gain", 0.625}}))), "");
    one.client.activateDefaultPreset(id);
    EXPECT_EQ(world.text("gain"), "0.625000,;");
}

TEST_F(TestCParamInterfaceBase, WhatARegistryRefusesComesBackAndChangesNothing)
{
    CRegistryMirror mirror;
    const std::int32_t id = one.client.listenRegistry(kMaster, mirror);
    const std::int32_t nowhere = one.client.listenRegistry("plugin.nothing", mirror);
    const std::string before = world.state();
    const CAudioPreset gate = numberPreset("maing:Fast", {{"attack", 1.0}});
    EXPECT_NE(errorText(one.client.activatePreset(id, gate, -1)).find("Incompatible preset."), std::string::npos);
    EXPECT_NE(errorText(one.client.setDefaultPreset(id, gate)).find("Incompatible preset."), std::string::npos);
    const CAudioPreset good = numberPreset("main:Fast", {{"gain", 1.0}});
    EXPECT_NE(errorText(one.client.activatePreset(id, good, 32)), "");
    EXPECT_NE(
        errorText(one.client.activatePreset(nowhere, good, -1)).find("Param registry object 'plugin.nothing' is NULL."),
        std::string::npos);
    EXPECT_NE(errorText(one.client.activatePreset(99, good, -1)).find("No param registry object '99' found."),
              std::string::npos);
    EXPECT_EQ(world.state(), before);
    EXPECT_EQ(world.text("gain"), "0.250000,;");
}

TEST_F(TestCParamInterfaceBase, MessagesThatAreCutTooLongOrUnknownChangeNothing)
{
    CRegistryMirror mirror;
    const int id = one.client.listenRegistry(kMaster, mirror);
    const int undo = one.client.createUndoData("Open", false, -1);
    std::vector<Bytes> messages;
    const auto add = [&messages](const char* event) -> Bytes& { return messages.emplace_back() << event; };
    add("listen-param") << "plugin.modMain.new" << one.tree.id(900);
    add("change-param") << one.listId << undo << 0 << 0 << 2 << 0 << 1 << 0 << 0 << 0 << 8.0 << 8.0;
    add("reset-param") << one.gainId << 0 << 0 << undo << 0;
    add("create-undo-data") << one.tree.id(900) << "Label" << 0 << -1;
    add("set-current-program") << id << 1;
    add("rename-preset") << id << 0 << "Other";
    add("activate-preset") << id << -1 << "main:Soft" << 0;
    add("set-default-preset") << id << "main:Soft" << 0;
    add("request-preset") << id << 1 << 0 << 0 << -1;
    add("listen-viz") << -1 << "source" << one.tree.id(900);
    add("request-viz-data") << 1 << 0.5;
    add("import-channel-labels");
    const std::string before = world.state();
    for (const Bytes& message : messages) {
        for (std::size_t size = 0; size < message.data.size(); ++size)
            EXPECT_NE(one.tree.send({message.data.begin(), message.data.begin() + static_cast<std::ptrdiff_t>(size)}),
                      "");
        std::vector<std::uint8_t> longer = message.data;
        longer.push_back(0);
        EXPECT_NE(one.tree.send(longer), "");
    }
    EXPECT_EQ(world.state(), before);
    EXPECT_EQ(world.provider.calls, "");
    EXPECT_EQ(world.params.findParam("plugin.modMain.new"), nullptr);
    for (const Bytes& message : messages)
        EXPECT_EQ(one.tree.send(message.data), "");
    EXPECT_NE(world.state(), before);
}

TEST_F(TestCParamInterfaceBase, MessagesThatClaimWhatIsNotTheirsAreRefused)
{
    const std::string before = world.state();
    const auto change = [&](int group, int first, int count, int toEnd, int size, int type) {
        return Bytes() << "change-param" << one.listId << 0 << group << first << count << toEnd << size << type << 0
                       << 0;
    };
    const double infinite = std::numeric_limits<double>::infinity();
    for (const Bytes& message :
         {Bytes() << "release-child-bridged", Bytes() << "no-such-message", Bytes() << -1, Bytes() << 0x7fffffff,
          Bytes() << "listen-param" << kGain << (77 << 16) + 1,
          Bytes() << "listen-param"
                  << "" << one.tree.id(900),
          Bytes() << "create-undo-data" << (77 << 16) + 1 << "x" << 0 << 0, Bytes() << "request-undo-history" << -1,
          Bytes() << "request-viz-data" << -1 << 0.0, Bytes() << "request-viz-data" << 1 << infinite,
          Bytes() << "listen-viz" << -1 << "x" << (77 << 16) + 1,
          Bytes() << "reset-param" << one.listId << 77 << 0 << 0 << 0,
          Bytes() << "reset-param" << one.listId << 0 << 0x7fffffff << 0 << 0, change(0, 0, 0x7fffffff, 0, 1, 0),
          change(0, -1, 1, 0, 1, 0), change(32, 0, 0, 1, 1, 0), change(0, 0, 1, 1, 1, 7), change(0, 0, 4096, 1, 256, 0),
          Bytes() << "activate-preset" << 1 << -1 << "main:x" << 0x7fffffff})
        EXPECT_NE(one.tree.send(message.data), "");
    EXPECT_EQ(world.state(), before);

    for (std::size_t i = 0; i < CParamInterfaceBase::kMaxUndoRecords; ++i)
        EXPECT_NE(one.client.createUndoData("Many", false, -1), 0);
    EXPECT_NE(one.tree.send((Bytes() << "create-undo-data" << one.tree.id(900) << "x" << 0 << 0).data), "");
    std::string error;
    for (std::size_t i = 0; error.empty(); ++i) {
        const std::string path = "made." + std::to_string(i);
        ASSERT_LE(i, CParamInterfaceBase::kMaxNamedParams);
        error = one.tree.send((Bytes() << "listen-param" << path.c_str() << one.tree.id(1000)).data);
        static_cast<void>(one.tree.send((Bytes() << "unlisten-param" << one.tree.id(1000)).data));
    }
}

TEST_F(TestCParamInterfaceBase, AFewBytesOfTextDoNotBecomeMany)
{
    const std::string text(60000, 'x');
    const auto change = [&](int group, int first, int count) {
        Bytes message = Bytes() << "change-param" << one.tree.id(1) << 0 << group << first << count << 0 << 1 << 1 << 1
                                << 0;
        for (int i = 0; i < count; ++i)
            message << 1;
        return one.tree.send((message << 1 << 1 << 1 << text.c_str()).data);
    };
    EXPECT_NE(change(0, 0, kAudioParamMaxElements), "") << "one item for all elements";
    EXPECT_EQ(change(kAudioParamTemplateGroup, 0, 1), "");
    EXPECT_NE(change(1, kAudioParamMaxElements - 1, 1), "") << "defaults in front of one element";
    EXPECT_NE(one.tree.send((Bytes() << "reset-param" << one.tree.id(1) << 0 << 4095 << 0 << 0).data), "");
    EXPECT_EQ(change(0, 0, 2), "");
    int group = 1;
    while (group < kAudioParamMaxGroups && change(group, 0, 1).empty())
        ++group;
    EXPECT_LT(group, 10);
}

TEST_F(TestCParamInterfaceBase, MutilatedMessagesNeitherCrashNorReachOtherParameters)
{
    CRegistryMirror mirror;
    const int id = one.client.listenRegistry(kMaster, mirror);
    std::vector<Bytes> seeds(3);
    seeds[0] << "change-param" << one.listId << 0 << 0 << 0 << 2 << 0 << 1 << 0 << 0 << 0 << 8.0 << 8.0;
    seeds[1] << "activate-preset" << id << -1;
    const std::vector<std::uint8_t> preset = savedBytes(numberPreset("main:Soft", {{"list", 0.5}}));
    seeds[1].data.insert(seeds[1].data.end(), preset.begin(), preset.end());
    seeds[2] << "reset-param" << one.listId << 0 << 0 << 0 << 0;
    std::uint32_t random = 1;
    const auto next = [&random](std::size_t end) {
        random = random * 1664525 + 1013904223;
        return (random >> 8) % end;
    };
    for (int round = 0; round < 3000; ++round) {
        std::vector<std::uint8_t> bytes = seeds[next(seeds.size())].data;
        for (std::size_t i = next(4) + 1; i > 0; --i)
            bytes[next(bytes.size())] = static_cast<std::uint8_t>(next(3) == 0 ? 0xff : next(256));
        static_cast<void>(one.tree.send(bytes));
        if (round % 100 == 0)
            one.tree.pull();
    }
    EXPECT_EQ(world.text("keep"), "7.000000,;");
    for (const double cell : one.list.values.cells(0))
        EXPECT_TRUE(std::isfinite(cell));
    one.tree.pull();
    EXPECT_EQ(one.list.text(), world.text("list"));
}

TEST_F(TestCParamInterfaceBase, AFailedMessageDoesNotStopThoseBehindIt)
{
    const auto queue = [this](const Bytes& message) {
        world.connector.send(1, CByteArray(std::span<const std::uint8_t>{message.data}));
    };
    queue(Bytes() << "update-param" << one.gainId << 0);
    queue(Bytes() << "release-child-bridged");
    queue(Bytes() << "update-undo-history" << 0 << 0x7fffffff);
    world.param("gain").setValue(1.0);
    one.tree.pull();
    EXPECT_EQ(one.gain.text(), "1.000000,;");
}

} // namespace qrb
