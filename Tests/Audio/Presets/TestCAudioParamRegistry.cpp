// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CMemoryReaderStatic.h"
#include "Core/CUpdateListener.h"
#include "Core/CWriteSeqBuffer.h"
#include "Platform/CSystemThread.h"
#include "Tests/Audio/Presets/CPresetWorld.h"

#include <limits>

namespace qrb {
namespace {

std::vector<std::string> keys(const CAudioPreset& preset)
{
    std::vector<std::string> keys;
    for (const auto& [key, blob] : preset.items)
        keys.push_back(key.toUtf8());
    return keys;
}

TEST(CAudioParamRegistry, APresetDefinesAllThatCounts)
{
    CPresetWorld world;
    world.set("gain", 0.9);
    world.set("list", 9, 1, 3);
    world.set("keep", 1);
    world.set("view", 1);
    world.param("preset-name").setString(0, 0, "Mine");
    EXPECT_EQ(world.names(), (std::vector<std::string>{"main:Mine", "0"}));

    CAudioPreset preset = numberPreset("main:Mix: Glue", {{"gain", 0.3}, {"keep", 5}, {"view", 5}, {"nothing", 1}});
    preset.items["late"] = numberBlob({{2.0, 3.0}});
    preset.items["^modMain.gain"] = numberBlob({{1.0}});
    preset.items["mode-params.drive"] = numberBlob({{1.0}}); // the list's, not the master's
    EXPECT_EQ(world.activate(world.master, preset), "");
    EXPECT_EQ(world.number("gain"), 0.3);
    EXPECT_EQ(world.number("list", 1, 0), 4.0);
    EXPECT_EQ(world.number("list", 1, 3), 1.0); // gone, reads as a default
    EXPECT_EQ(world.number("keep"), 1.0);
    EXPECT_EQ(world.number("view"), 1.0);
    EXPECT_EQ(world.number("mode-params.drive"), 5.0);
    EXPECT_EQ(world.text("preset-name"), "Mix: Glue");
    EXPECT_EQ(world.names(), (std::vector<std::string>{"main:Mix: Glue", "0"}));
    // Declared but not used until now; what is declared nowhere, or by a detour, creates nothing.
    EXPECT_EQ(world.number("late", 0, 1), 3.0);
    for (const char* const path : {"plugin.modMain.nothing", "plugin.modMain.^modMain.gain"})
        EXPECT_EQ(world.params.findParam(path), nullptr);

    CAudioPreset none;
    none.name = "main:None";
    EXPECT_EQ(world.activate(world.master, none), "");
    EXPECT_EQ(world.number("gain"), 0.5);
    EXPECT_EQ(world.text("preset-name"), "None");
    EXPECT_EQ(world.undo.text(), "Undo history start|Master preset activate|Master preset activate|2");
}

TEST(CAudioParamRegistry, NothingIsHalfApplied)
{
    CPresetWorld world;
    world.gesture("hand", "gain", 0.25);
    const CParamState before = world.state();
    const std::string history = world.undo.text();
    CAudioPreset preset = numberPreset("main:Bad", {{"gain", 0.75}, {"list", 4}});
    const CByteArray good = preset.items["list"];
    for (std::size_t cut = 0; cut < good.size(); ++cut) {
        preset.items["list"] = CByteArray(good.span().first(cut));
        EXPECT_NE(world.activate(world.master, preset), "") << cut;
        EXPECT_NE(world.activate(world.master, preset, -1, &world), "") << cut;
    }
    preset.items["list"] = good;
    preset.items["list"][7] = 2; // the version, behind the name
    EXPECT_NE(world.activate(world.master, preset).find("Unsupported data set version 2."), std::string::npos);
    preset.items["list"] = good;
    preset.items["list"][11] = 2; // the element size
    EXPECT_NE(world.activate(world.master, preset)
                  .find("Unsupported storage format (esize=2, dtype=0; should be: esize=1, dtype=0)."),
              std::string::npos);
    preset.items["list"] = good;
    preset.items["preset-name"] = good; // of another type
    EXPECT_NE(world.activate(world.master, preset), "");
    for (const char* const name : {"maing:Fast", "main", ":x", ""}) {
        preset = numberPreset(name, {{"gain", 0.75}});
        EXPECT_NE(world.activate(world.master, preset).find("Incompatible preset."), std::string::npos) << name;
    }
    preset.name = "main:x";
    EXPECT_EQ(world.activate(world.master, preset, 32), "");
    EXPECT_EQ(world.state(), before);
    EXPECT_EQ(world.undo.text(), history);
    EXPECT_EQ(world.names(), (std::vector<std::string>{"main:Default", "0"}));

    // Numbers out of bounds are held within them, what is no number becomes the default.
    preset.items["gain"] = numberBlob({{1e300}});
    preset.items["list"] = numberBlob({{std::numeric_limits<double>::quiet_NaN(), -5, 12}});
    EXPECT_EQ(world.activate(world.master, preset), "");
    EXPECT_EQ(world.number("gain"), 1.0);
    EXPECT_EQ(world.number("list", 0, 0), 1.0);
    EXPECT_EQ(world.number("list", 0, 1), 0.0);
    EXPECT_EQ(world.number("list", 0, 2), 9.0);
}

TEST(CAudioParamRegistry, AGroupsPresetLeavesOthersAlone)
{
    CPresetWorld world;
    const CAudioPreset preset = numberPreset("maing:Fast", {{"attack", 8}});
    for (int group = 0; group < 4; ++group)
        world.set("gate-params.attack", group, group);
    EXPECT_EQ(world.activate(world.gate, preset, 2), "");
    EXPECT_EQ(world.number("gate-params.attack", 1), 1.0);
    EXPECT_EQ(world.number("gate-params.attack", 2), 8.0);
    EXPECT_EQ(world.number("gate-params.attack", 3), 3.0);
    EXPECT_EQ(world.text("gate-params.mode-name", 2), "Fast");
    EXPECT_EQ(world.undo.text(), "Undo history start|Gate mode preset activate (Rear)|1");
    // A change by hand gives the mode away, in its own group and within the same gesture.
    world.gesture("hand", "gate-params.attack", 7, 2);
    EXPECT_EQ(world.text("gate-params.mode-name", 2), "User");
    EXPECT_EQ(world.text("gate-params.mode-name", 0), "User"); // set by hand above
    world.undo.setPosition(1);
    EXPECT_EQ(world.text("gate-params.mode-name", 2), "Fast");
    world.undo.setPosition(0);
    EXPECT_EQ(world.number("gate-params.attack", 2), 2.0);
    world.gesture("master", "gain", 0.1);
    EXPECT_EQ(world.text("preset-name"), "Default");

    const CAudioPreset taken = world.captured(world.gate, 3);
    EXPECT_EQ(taken.name, "maing:User");
    EXPECT_EQ(keys(taken), (std::vector<std::string>{"attack", "mode-name"}));
    EXPECT_EQ(world.activate(world.gate, taken, 5), "");
    EXPECT_EQ(world.number("gate-params.attack", 5), 3.0);
    // A group that is not there has nothing to take; a registry without a name parameter leaves the name empty.
    EXPECT_TRUE(world.captured(world.gate, 9).items.empty());
    EXPECT_EQ(world.captured(world.io).name, "QBIO:");
}

TEST(CAudioParamRegistry, ASelectorActivatesAPresetForEachElement)
{
    CAudioPresetList list;
    list.banks.emplace();
    list.banks[0].presets.append(numberPreset("MODE:a", {{"drive", 1}, {"tone", 1}}));
    list.banks[0].presets.append(numberPreset("MODE:b", {{"drive", 2}}));
    CPresetWorld world({.modes = chunked(savedBytes(list), kPresetListChunk)});
    const auto drive = [&](int group, int element) { return world.number("mode-params.drive", group, element); };
    // The defaults of the selector are its default elements' modes.
    EXPECT_EQ(drive(0, 0), 1.0);
    EXPECT_EQ(drive(0, 1), 2.0);
    EXPECT_EQ(drive(6, 1), 2.0);
    EXPECT_EQ(world.number("mode-params.tone", 0, 1), 4.0);

    world.gesture("mode", "mode", 1, 1, 2);
    EXPECT_EQ(drive(1, 2), 2.0);
    EXPECT_EQ(world.number("mode-params.tone", 1, 2), 4.0);
    world.set("mode-params.drive", 7, 1, 2);
    world.gesture("mode", "mode", 0, 1, 2);
    EXPECT_EQ(drive(1, 2), 1.0);
    // What was changed by hand in between comes back along with the mode.
    world.undo.setPosition(1);
    EXPECT_EQ(world.number("mode", 1, 2), 1.0);
    EXPECT_EQ(drive(1, 2), 7.0);
    world.set("mode", 9, 1, 2); // no such mode
    EXPECT_EQ(drive(1, 2), 5.0);

    // The end of the selector's group ends the groups of what it selects.
    const double one = 1.0;
    CAudioParamUpdate record;
    record.group = 1;
    record.elementCount = 1;
    record.isToEnd = true;
    record.format = world.param("mode").info()->format;
    record.values = &one;
    EXPECT_TRUE(world.param("mode").update(record));
    const auto count = [&](int group) {
        const CAudioParamGuard guard(world.params);
        return world.param("mode-params.drive").editStorage(guard).elementCount(group);
    };
    EXPECT_EQ(count(1), 1);
    record.elementCount = 0;
    world.set("mode-params.drive", 7, 1, 2);
    EXPECT_TRUE(world.param("mode").update(record));
    EXPECT_EQ(count(1), 0);
    // Automation selects as soon as the owner gets to it.
    EXPECT_TRUE(world.param("mode").trySetElement(0, 0, 1.0));
    EXPECT_EQ(drive(0, 0), 1.0);
    world.params.runDeferred();
    EXPECT_EQ(drive(0, 0), 2.0);
}

TEST(CAudioParamRegistry, RoutingPresetsTellWhatTheyNeed)
{
    const CPresetWorld world;
    const auto usable = [](const char* key, const std::vector<double>& values) {
        CAudioPreset preset;
        preset.items[key] = numberBlob({values});
        return std::to_string(CAudioParamRegistry::isRoutingPresetUsable(preset, true, false)) +
               std::to_string(CAudioParamRegistry::isRoutingPresetUsable(preset, false, true));
    };
    EXPECT_EQ(usable("in-routing", {1, 2}), "11");
    EXPECT_EQ(usable("ms-pairs", {0, 0}), "11");
    EXPECT_EQ(usable("ms-pairs", {0, 1}), "10");
    EXPECT_EQ(usable("sidechain", {0, 1, 2}), "11");
    EXPECT_EQ(usable("sidechain", {2, 1, 2}), "01");
    EXPECT_EQ(usable("sidechain-mute", {0, 1}), "01");
    CAudioPreset damaged;
    damaged.items["ms-pairs"] = CByteArray{1, 2, 3};
    EXPECT_FALSE(CAudioParamRegistry::isRoutingPresetUsable(damaged, true, true));
}

TEST(CAudioParamRegistry, ThreadsMayWorkBesideEachOther)
{
    CPresetWorld world;
    const CAudioPreset preset = numberPreset("main:x", {{"gain", 1}});
    platform::CSystemThread threads[3];
    const auto work = [&](int kind) {
        for (int i = 0; i < 200; ++i) {
            if (kind == 0)
                (void)world.activate(world.master, preset);
            else if (kind == 1)
                world.gesture("g", "list", i % 9, i % 3, i % 4);
            else
                world.undo.setPosition(i % 5);
            (void)world.names();
            (void)world.undo.text();
            if (i % 40 == 0 && world.master.exchangeShadowPreset())
                ADD_FAILURE();
        }
    };
    for (int kind = 0; kind < 3; ++kind)
        ASSERT_EQ(threads[kind].start(
                      "worker", [&work, kind] { work(kind); }, platform::EThreadPriority::normal),
                  0);
    for (platform::CSystemThread& thread : threads)
        thread.join();
}

TEST(CAudioParamRegistry, TheHistoryIsToldWhileOthersMayLookAtTheBank)
{
    CPresetWorld world;
    world.undo.onChange = [&world] {
        platform::CSystemThread other;
        ASSERT_EQ(other.start(
                      "other", [&world] { (void)world.names(); }, platform::EThreadPriority::normal),
                  0);
        other.join();
    };
    world.gesture("g", "gain", 0.5);
    world.master.updateShadowPreset();
    EXPECT_FALSE(world.master.exchangeShadowPreset());
    EXPECT_EQ(world.activate(world.master, numberPreset("main:x", {}), -1, &world), "");
    EXPECT_EQ(world.undo.changeCount, 4);
}

} // namespace
} // namespace qrb
