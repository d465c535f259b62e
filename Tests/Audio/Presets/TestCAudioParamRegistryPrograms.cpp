// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CMemoryReaderStatic.h"
#include "Core/CUpdateListener.h"
#include "Core/CWriteSeqBuffer.h"
#include "Tests/Audio/Presets/CPresetWorld.h"

namespace qrb {
namespace {

/// Hears of a registry's programs.
class Listener : public CUpdateListener {
public:
    explicit Listener(CUpdateNotifier& notifier) { attach(&notifier); }
    ~Listener() override { detach(); }
    void onUpdate(const CUpdateInfo& info) override
    {
        ++count;
        sender = info.sender;
    }

    int count = 0;
    const void* sender = nullptr;
};

CPresetWorld::COptions twoPrograms()
{
    CAudioPresetBank bank;
    bank.name = "whatever";
    bank.presets.append(numberPreset("main:First", {{"gain", 0.1}, {"keep", 3}}));
    bank.presets.append(numberPreset("main:Second", {{"gain", 0.2}}));
    return {.factory = chunked(savedBytes(bank), kPresetBankChunk), .modes = {}, .defaultPreset = {}};
}

CAudioPresetBank acquired(CPresetWorld& world, bool isFactory)
{
    CWriteSeqBuffer out;
    EXPECT_EQ(errorText(world.master.acquireBank(isFactory, out)), "");
    CByteArray bytes;
    out.getContiguous(bytes);
    CMemoryReaderStatic in(bytes.span());
    CAudioPresetBank bank;
    EXPECT_EQ(errorText(bank.load(in)), "");
    return bank;
}

TEST(CAudioParamRegistryPrograms, TheSessionStartsFromWhatIsBuiltIn)
{
    {
        CPresetWorld world;
        EXPECT_EQ(world.names(), (std::vector<std::string>{"main:Default", "0"}));
        EXPECT_EQ(world.names(true), (std::vector<std::string>{"-1"}));
        EXPECT_EQ(world.master.getProgramCount(), 1);
    }
    CPresetWorld world(twoPrograms());
    EXPECT_EQ(world.master.getProgramCount(), 2);
    EXPECT_EQ(world.names(), (std::vector<std::string>{"main:First", "main:Second", "0"}));
    EXPECT_EQ(world.names(true), (std::vector<std::string>{"main:First", "main:Second", "-1"}));
    EXPECT_EQ(world.number("gain"), 0.1);
    EXPECT_EQ(world.number("keep"), 3.0);
    EXPECT_EQ(world.text("preset-name"), "First");
    EXPECT_EQ(acquired(world, true).name, "Factory ROM");
    EXPECT_EQ(acquired(world, false).name, "Session Bank");
    // What a reset returns to is the first program as well.
    world.set("gain", 1.0);
    world.param("gain").resetValues(0, 0);
    EXPECT_EQ(world.number("gain"), 0.1);
}

TEST(CAudioParamRegistryPrograms, TheUsersDefaultPresetComesFirst)
{
    CPresetWorld::COptions options = twoPrograms();
    CAudioPreset own = numberPreset("main:Own", {{"gain", 0.7}});
    options.defaultPreset = chunked(savedBytes(own), kPresetChunk);
    EXPECT_EQ(CPresetWorld(options).names(), (std::vector<std::string>{"main:Own", "main:Second", "0"}));
    // A damaged file of the user's is as good as none.
    own.items["gain"].resize(9);
    options.defaultPreset = chunked(savedBytes(own), kPresetChunk);
    EXPECT_EQ(CPresetWorld(options).number("gain"), 0.1);
    options.defaultPreset = chunked({1, 2, 3}, kPresetChunk);
    options.factory = {1, 2, 3};
    EXPECT_EQ(CPresetWorld(options).names(), (std::vector<std::string>{"main:Default", "0"}));
}

TEST(CAudioParamRegistryPrograms, EachProgramHasItsValuesAndItsHistory)
{
    CPresetWorld world(twoPrograms());
    Listener listener(world.master);
    world.gesture("first", "gain", 0.9);
    world.set("keep", 8);
    EXPECT_FALSE(world.master.setCurrentProgram(1, &world));
    EXPECT_EQ(listener.count, 1);
    EXPECT_EQ(listener.sender, &world);
    EXPECT_EQ(world.number("gain"), 0.2);
    EXPECT_EQ(world.number("keep"), 8.0);
    EXPECT_EQ(world.text("preset-name"), "Second");
    EXPECT_EQ(world.undo.text(), "Undo history start|0");
    for (const int index : {1, -1, 2})
        EXPECT_FALSE(world.master.setCurrentProgram(index, nullptr));
    EXPECT_EQ(listener.count, 1);
    world.gesture("second", "gain", 0.3);
    EXPECT_FALSE(world.master.setCurrentProgram(0, nullptr));
    EXPECT_EQ(world.number("gain"), 0.9);
    EXPECT_EQ(world.undo.text(), "Undo history start|first|1");
    EXPECT_EQ(world.master.getCurrentProgram(), 0);

    // A bank that is stored holds the instance's own values in every program.
    const CAudioPresetBank bank = acquired(world, false);
    EXPECT_EQ(bank.at(0).items.at("keep"), bank.at(1).items.at("keep"));
    EXPECT_EQ(bank.at(0).items.at("instance-name"), bank.at(1).items.at("instance-name"));
    EXPECT_NE(bank.at(0).items.at("gain"), bank.at(1).items.at("gain"));
    CWriteSeqBuffer out;
    EXPECT_NE(
        errorText(world.gate.acquireBank(false, out)).find("Acquiring bank in a non-master registry is an error."),
        std::string::npos);
    EXPECT_NE(errorText(world.master.acquirePreset(false, 2, -1, out)).find("Invalid preset index 2 specified."),
              std::string::npos);
    EXPECT_NE(errorText(world.master.acquirePreset(true, -1, -1, out)), "");
    EXPECT_EQ(out.getSize(), 0u);
}

TEST(CAudioParamRegistryPrograms, NamesFollowEachOther)
{
    CPresetWorld world(twoPrograms());
    Listener listener(world.master);
    world.master.renamePreset(0, "One", nullptr);
    world.master.renamePreset(1, "Two", nullptr);
    world.master.renamePreset(2, "Three", nullptr);
    EXPECT_EQ(listener.count, 2);
    EXPECT_EQ(world.names(), (std::vector<std::string>{"main:One", "main:Two", "0"}));
    EXPECT_EQ(world.text("preset-name"), "One");
    EXPECT_EQ(world.undo.text(), "Undo history start|Program name change|1");
    world.undo.setPosition(0);
    EXPECT_EQ(world.names()[0], "main:First");
    world.param("preset-name").setString(0, 0, "Typed");
    EXPECT_EQ(world.master.getPresetName(0), "main:Typed");
    EXPECT_EQ(world.master.getPresetName(7), "");

    EXPECT_FALSE(world.master.activateFactoryPreset(1));
    EXPECT_FALSE(world.master.activateFactoryPreset(2));
    EXPECT_EQ(world.names(), (std::vector<std::string>{"main:Second", "main:Two", "0"}));
    EXPECT_EQ(world.number("gain"), 0.2);
    EXPECT_EQ(world.number("keep"), 3.0);
    EXPECT_EQ(world.undo.text(), "Undo history start|ROM preset activate|1");
}

TEST(CAudioParamRegistryPrograms, AHostsStateBringsEverythingBack)
{
    CPresetWorld::COptions options = twoPrograms();
    CPresetWorld world(options);
    EXPECT_FALSE(world.master.setCurrentProgram(1, nullptr));
    world.gesture("g", "gain", 0.6);
    world.set("keep", 9);
    world.set("list", 5, 3, 4);
    world.param("instance-name").setString(0, 0, "Drums");
    CWriteSeqBuffer out;
    EXPECT_FALSE(world.master.acquirePreset(false, -1, -1, out));
    CByteArray bytes;
    out.getContiguous(bytes);
    const CParamState saved = world.state();

    CAudioPreset state;
    CMemoryReaderStatic in(bytes.span());
    EXPECT_FALSE(state.load(in));
    EXPECT_FALSE(world.master.setCurrentProgram(0, nullptr));
    world.gesture("later", "gain", 0.1);
    world.set("keep", 0);
    world.param("instance-name").setString(0, 0, "");
    world.master.updateShadowPreset();
    Listener listener(world.master);
    EXPECT_EQ(world.activate(world.master, state, -1, &options), "");
    EXPECT_EQ(world.state(), saved);
    EXPECT_EQ(world.master.getCurrentProgram(), 1);
    EXPECT_EQ(listener.sender, &options);
    EXPECT_EQ(world.undo.text(), "Undo history start|0");
    // No history of any program is left, and the shadow is what was loaded.
    EXPECT_FALSE(world.master.setCurrentProgram(0, nullptr));
    EXPECT_EQ(world.undo.text(), "Undo history start|0");
    EXPECT_FALSE(world.master.setCurrentProgram(1, nullptr));
    EXPECT_FALSE(world.master.exchangeShadowPreset());
    EXPECT_EQ(world.state(), saved);
    // A name that no program has belongs to the first.
    state.name = "main:Unknown";
    EXPECT_EQ(world.activate(world.master, state, -1, &options), "");
    EXPECT_EQ(world.names(), (std::vector<std::string>{"main:Unknown", "main:Second", "0"}));
}

TEST(CAudioParamRegistryPrograms, TwoExchangesGiveBothSidesBack)
{
    CPresetWorld world(twoPrograms());
    world.gesture("a", "gain", 0.4);
    const CParamState first = world.state();
    EXPECT_FALSE(world.master.exchangeShadowPreset()); // with an equal one
    EXPECT_EQ(world.state(), first);
    EXPECT_EQ(world.undo.text(), "Undo history start|a|1");
    world.gesture("b", "list", 9, 2, 2);
    world.master.renamePreset(0, "Other", nullptr);
    const CParamState second = world.state();
    EXPECT_FALSE(world.master.exchangeShadowPreset());
    EXPECT_EQ(world.state(), first);
    EXPECT_EQ(world.names()[0], "main:First");
    EXPECT_EQ(world.undo.text(), "Undo history start|a|1");
    world.undo.setPosition(0);
    EXPECT_FALSE(world.master.exchangeShadowPreset());
    EXPECT_EQ(world.state(), second);
    EXPECT_EQ(world.names()[0], "main:Other");
    EXPECT_EQ(world.undo.text(), "Undo history start|a|b|Program name change|3");
    world.undo.setPosition(0);
    EXPECT_EQ(world.number("gain"), 0.1);
}

TEST(CAudioParamRegistryPrograms, ResetsReturnToTheDefaultPreset)
{
    CPresetWorld world(twoPrograms());
    const auto setDefault = [&](const CAudioPreset& preset) {
        const std::vector<std::uint8_t> bytes = savedBytes(preset);
        CMemoryReaderStatic in(bytes);
        return errorText(world.master.setDefaultPreset(in));
    };
    CAudioPreset preset = numberPreset("main:D", {{"gain", 0.8}});
    preset.items["list"] = numberBlob({{7}, {6, 5}});
    EXPECT_EQ(setDefault(preset), "");
    EXPECT_EQ(world.number("gain"), 0.1); // what sounds stays
    world.set("list", 0, 1, 1);
    world.param("list").resetValues(1, 1);
    EXPECT_EQ(world.number("list", 1, 1), 5.0);
    preset.items["gain"].resize(5);
    EXPECT_NE(setDefault(preset), "");
    EXPECT_NE(setDefault(numberPreset("maing:D", {{"gain", 0.9}})).find("Incompatible preset."), std::string::npos);

    world.set("keep", 1);
    world.param("preset-name").setString(0, 0, "Mine");
    world.master.masterReset();
    EXPECT_EQ(world.number("gain"), 0.8);
    EXPECT_EQ(world.number("list", 0, 0), 7.0);
    EXPECT_EQ(world.number("keep"), 1.0);
    EXPECT_EQ(world.text("preset-name"), "Default");
    EXPECT_EQ(world.names()[0], "main:Default");
    EXPECT_EQ(world.undo.text(), "Undo history start|Master reset|1");
    world.undo.setPosition(0);
    EXPECT_EQ(world.number("gain"), 0.1);
    EXPECT_EQ(world.names()[0], "main:Mine");
}

} // namespace
} // namespace qrb
