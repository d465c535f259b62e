// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tests/Audio/Presets/CPresetWorld.h"

#include <array>
#include <random>
#include <set>

namespace qrb {
namespace {

TEST(CAudioParamUndo, MovesThroughGesturesInBothDirections)
{
    CPresetWorld world;
    EXPECT_EQ(world.undo.text(), "Undo history start|0");
    world.undo.setPosition(0);
    std::vector<CParamState> states{world.state()};
    world.gesture("one", "gain", 0.25);
    states.push_back(world.state());
    world.gesture("two", "list", 9, 5, 6); // groups and elements that were not there
    states.push_back(world.state());
    world.gesture("three", "keep", 1);
    states.push_back(world.state());
    EXPECT_EQ(world.undo.text(), "Undo history start|one|two|three|3");
    EXPECT_EQ(world.undo.changeCount, 3);
    for (const int position : {0, 3, 2, 1, 3, 0, 2}) {
        world.undo.setPosition(position);
        EXPECT_EQ(world.state(), states[static_cast<std::size_t>(position)]) << position;
        world.params.flushQueue();
        EXPECT_EQ(world.param("gain").audioStorage().value(0, 0), world.number("gain"));
    }
    EXPECT_EQ(world.undo.changeCount, 10);
    for (const int position : {-1, 4, 2})
        world.undo.setPosition(position);
    world.undo.setPosition(3, ENotifyHistory::no);
    EXPECT_EQ(world.undo.changeCount, 10);

    // A new gesture cuts what could have been redone; one without change is no line.
    world.undo.setPosition(1);
    world.gesture("four", "gain", 0.75);
    EXPECT_EQ(world.undo.text(), "Undo history start|one|four|2");
    world.undo.submit(std::make_unique<CAudioParamUndoEntry>("nothing"));
    world.gesture("unseen", "view", 3); // neither preset content nor persistent
    EXPECT_EQ(world.undo.text(), "Undo history start|one|four|2");
}

TEST(CAudioParamUndo, KeepsTheLatestGesturesOnly)
{
    CPresetWorld world;
    for (int i = 1; i <= 33; ++i)
        world.gesture("g", "list", i % 10, 0, i % 3);
    CArray<CString> labels;
    std::int32_t position = 0;
    world.undo.getHistory(labels, position);
    EXPECT_EQ(labels.size(), 33u);
    EXPECT_EQ(position, 32);
    world.undo.setPosition(0);
    EXPECT_EQ(world.number("list", 0, 1), 1.0); // the first gesture stays applied
}

TEST(CAudioParamUndo, GesturesOfOneTagBecomeOneLine)
{
    CPresetWorld world;
    world.gesture("drag", "gain", 0.1, 0, 0, 5);
    world.gesture("drag", "gain", 0.2, 0, 0, 5);
    world.gesture("drag", "gain", 0.3, 0, 0, 5);
    EXPECT_EQ(world.undo.text(), "Undo history start|drag|1");
    EXPECT_EQ(world.undo.changeCount, 1);
    world.undo.setPosition(0);
    EXPECT_EQ(world.number("gain"), 0.5);
    world.undo.setPosition(1);
    EXPECT_EQ(world.number("gain"), 0.3);
    world.gesture("other tag", "gain", 0.4, 0, 0, 6);
    world.gesture("other group", "list", 1, 1, 0, 6);
    world.gesture("longer", "list", 1, 1, 4, 6); // the group's count differs
    EXPECT_EQ(world.undo.text(), "Undo history start|drag|other tag|other group|longer|4");
    // After an undo a step merges into what stands before the position, and what can be redone stays.
    world.undo.setPosition(2);
    world.gesture("other tag", "gain", 0.9, 0, 0, 6);
    EXPECT_EQ(world.undo.text(), "Undo history start|drag|other tag|other group|longer|2");
    world.undo.setPosition(1);
    world.undo.setPosition(2);
    EXPECT_EQ(world.number("gain"), 0.9);
}

TEST(CAudioParamUndo, DefaultElementsComeBackToo)
{
    CPresetWorld world;
    CAudioParam& list = world.param("list");
    CAudioParamUndoEntry entry("template");
    const std::vector<double> values{8, 8};
    CAudioParamUpdate record;
    record.group = kAudioParamTemplateGroup;
    record.elementCount = 2;
    record.isToEnd = true;
    record.format = list.info()->format;
    record.values = values.data();
    const CParamState before = world.state();
    EXPECT_TRUE(list.update(record, {.undo = &entry}));
    EXPECT_EQ(world.number("list", 0, 2), 8.0);
    world.undo.submit(std::make_unique<CAudioParamUndoEntry>(entry));
    world.undo.setPosition(0);
    EXPECT_EQ(world.state(), before);
    EXPECT_EQ(world.number("list", 4, 1), 2.0); // a group that is not there reads as the defaults
    world.undo.setPosition(1);
    EXPECT_EQ(world.number("list", 4, 1), 8.0);
}

/// What each gesture changed, found by comparing whole states: a model of the history that knows nothing of its inside.
class CModel {
public:
    using CChange = std::map<std::pair<std::string, std::size_t>, std::array<std::vector<std::string>, 2>>;

    static CChange difference(const CParamState& before, const CParamState& after)
    {
        CChange change;
        const auto cells = [](const CParamState& state, const std::string& path, std::size_t group) {
            const auto found = state.find(path);
            return found != state.end() && group < found->second.size() ? found->second[group]
                                                                        : std::vector<std::string>{};
        };
        for (const auto& [path, groups] : after)
            for (std::size_t group = 0; group < 16; ++group)
                if (cells(before, path, group) != cells(after, path, group))
                    change[{path, group}] = {cells(before, path, group), cells(after, path, group)};
        return change;
    }
    static void apply(CParamState& state, const CChange& change, std::size_t side)
    {
        for (const auto& [place, sides] : change) {
            auto& groups = state[place.first];
            groups.resize(std::max(groups.size(), place.second + 1));
            groups[place.second] = sides[side];
            while (!groups.empty() && groups.back().empty())
                groups.pop_back();
        }
    }

    struct CHistory {
        std::vector<CChange> changes;
        std::size_t position = 0;
    };
};

/// A world, its model, and the gestures that a user may make.
class CRandomSession {
public:
    explicit CRandomSession(CPresetWorld& world) : m_world(world), m_live(world.state()) {}

    void step()
    {
        switch (number(12)) {
        case 0:
            return move();
        case 1:
            return changeProgram();
        case 2:
            return exchange();
        case 3:
            return note([&] { m_world.master.masterReset(); });
        case 4:
            return note([&] { EXPECT_EQ(m_world.activate(m_world.master, anyPreset("main:Any"), -1), ""); });
        case 5:
            return note([&] { EXPECT_EQ(m_world.activate(m_world.gate, gatePreset(), number(3)), ""); });
        default:
            return note([&] { change(); });
        }
    }

private:
    struct CSide {
        CModel::CHistory history;
        CParamState state;
    };

    int number(int count) { return static_cast<int>(m_random() % static_cast<unsigned>(count)); }

    void change()
    {
        static constexpr const char* kNames[] = {"gain", "list", "keep", "mode", "gate-params.attack"};
        const char* const name = kNames[number(5)];
        const bool isOne = number(2) == 0 || std::string_view(name) == "gain" || std::string_view(name) == "keep";
        const int tag = number(2) == 0 ? -1 : number(2);
        // What programs share never takes its own value again, which the model would not see as a change.
        const double value = std::string_view(name) == "keep" ? ++m_lastKept : number(10) / 10.0 * (isOne ? 1 : 5);
        m_world.gesture("change", name, value, isOne ? 0 : number(3), isOne ? 0 : number(4), tag);
    }

    CAudioPreset anyPreset(const char* name)
    {
        CAudioPreset preset = numberPreset(name, {{"gain", number(10) / 10.0}, {"keep", number(9)}});
        preset.items["list"] = numberBlob({{1.0, number(9) / 1.0}, {}, {2.0}});
        if (number(2) == 0)
            preset.items["mode"] = numberBlob({{number(3) / 1.0, number(5) / 1.0}, {1.0}});
        return preset;
    }
    CAudioPreset gatePreset() { return numberPreset("maing:Fast", {{"attack", number(9)}}); }

    /// Makes a gesture and notes what it did, unless it became one with the last or changed nothing.
    template <class F>
    void note(const F& gesture)
    {
        CArray<CString> labels;
        std::int32_t before = 0;
        std::int32_t after = 0;
        m_world.undo.getHistory(labels, before);
        const std::size_t linesBefore = labels.size();
        const int toldBefore = m_world.undo.changeCount;
        gesture();
        m_world.undo.getHistory(labels, after);
        const CParamState now = m_world.state();
        const CModel::CChange change = CModel::difference(m_live, now);
        auto& history = m_history;
        if (m_world.undo.changeCount != toldBefore) {
            history.changes.resize(history.position);
            history.changes.push_back(change);
            if (history.changes.size() > 32)
                history.changes.erase(history.changes.begin());
            history.position = history.changes.size();
        } else if (history.position > 0) {
            ASSERT_EQ(labels.size(), linesBefore);
            for (const auto& [place, sides] : change) {
                auto& known = history.changes[history.position - 1];
                if (!known.contains(place))
                    known[place][0] = sides[0];
                known[place][1] = sides[1];
            }
        } else {
            ASSERT_TRUE(change.empty());
        }
        ASSERT_EQ(static_cast<std::size_t>(after), history.position);
        ASSERT_EQ(labels.size(), history.changes.size() + 1);
        m_live = now;
    }

    void move()
    {
        auto& history = m_history;
        const std::size_t wanted = static_cast<std::size_t>(number(static_cast<int>(history.changes.size()) + 1));
        m_world.undo.setPosition(static_cast<std::int32_t>(wanted));
        for (; history.position < wanted; ++history.position)
            CModel::apply(m_live, history.changes[history.position], 1);
        for (; history.position > wanted; --history.position)
            CModel::apply(m_live, history.changes[history.position - 1], 0);
        ASSERT_EQ(m_world.state(), m_live);
    }

    /// What belongs to the instance stays when programs or the shadow take over the rest.
    static void keepInstance(CParamState& state, const CParamState& live)
    {
        for (const char* const path : {"plugin.modMain.keep", "plugin.modMain.view", "plugin.modMain.instance-name"})
            state[path] = live.at(path);
    }

    void changeProgram()
    {
        const int next = number(3);
        if (next == m_program)
            return;
        m_programs[m_program] = {m_history, m_live};
        EXPECT_EQ(errorText(m_world.master.setCurrentProgram(next, nullptr)), "");
        const auto known = m_programs.find(next);
        CParamState wanted = known != m_programs.end() ? known->second.state : m_world.state();
        m_history = known != m_programs.end() ? known->second.history : CModel::CHistory();
        keepInstance(wanted, m_live);
        m_program = next;
        m_live = wanted;
        ASSERT_EQ(m_world.state(), m_live);
    }

    void exchange()
    {
        if (number(3) == 0 || !m_hasShadow) {
            m_world.master.updateShadowPreset();
            m_shadow = {m_history, m_live};
            m_hasShadow = true;
            return;
        }
        EXPECT_EQ(errorText(m_world.master.exchangeShadowPreset()), "");
        CSide live{m_history, m_live};
        keepInstance(m_shadow.state, m_live);
        m_live = m_shadow.state;
        m_history = m_shadow.history;
        m_shadow = live;
        ASSERT_EQ(m_world.state(), m_live);
    }

    CPresetWorld& m_world;
    std::mt19937 m_random{20261};
    CParamState m_live;
    CModel::CHistory m_history;
    std::map<int, CSide> m_programs;
    int m_program = 0;
    CSide m_shadow;
    bool m_hasShadow = false;
    double m_lastKept = 10.0;
};

TEST(CAudioParamUndo, FollowsAModelThroughRandomGestures)
{
    CAudioPresetBank factory;
    for (const char* const name : {"main:A", "main:B", "main:C"})
        factory.presets.append(numberPreset(name, {{"gain", 0.1 * static_cast<double>(factory.count())}}));
    CAudioPresetList modes;
    modes.banks.emplace();
    for (const double drive : {1.0, 2.0, 3.0})
        modes.banks[0].presets.append(numberPreset("MODE:m", {{"drive", drive}}));
    CPresetWorld world({.factory = chunked(savedBytes(factory), kPresetBankChunk),
                        .modes = chunked(savedBytes(modes), kPresetListChunk)});
    CRandomSession session(world);
    for (int i = 0; i < 10000 && !testing::Test::HasFatalFailure(); ++i)
        session.step();
    world.params.flushQueue();
    CArray<CAudioParam*> all;
    world.params.listParams(all);
    const CAudioParamGuard guard(world.params);
    for (const CAudioParam* const param : all)
        for (int group = 0; group < 3; ++group)
            EXPECT_TRUE(
                std::ranges::equal(param->audioStorage().cells(group), param->editStorage(guard).cells(group)) ||
                param->info()->format.hasItems())
                << param->path().toUtf8();
}

} // namespace
} // namespace qrb
