// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tests/Product/CPresetModel.h"

#include <algorithm>
#include <gtest/gtest.h>

using namespace qrb;

namespace {

const std::string kGate = "modThumpcraft.gate-params.";
const std::string kEqualizer = "modThumpcraft.eq-params.";
constexpr int kGroups = 4;

/// Does the same to an instance and to its model, and compares the two.
class CSession {
public:
    CSession() : m_paths(m_rig.contentPaths()), m_model(m_rig) {}

    void step()
    {
        switch (number(16)) {
        case 0:
        case 1:
            return move(number(m_model.count() + 1));
        case 2:
            return setProgram(number(CPresetRig::kPrograms));
        case 3:
            return number(3) == 0 ? updateShadow() : exchangeShadow();
        case 4:
            return reset();
        case 5:
            return number(4) == 0 ? masterReset() : rename();
        case 6:
            return activate("param-registry", "k7rw:", {}, number(3) == 0 ? number(kGroups) : -1);
        case 7:
            return number(2) == 0 ? activate("param-registry-gate", "k7rwb:", kGate, number(kGroups + 1) - 1)
                                  : activate("param-registry-eq", "k7rwa:", kEqualizer, number(kGroups + 1) - 1);
        case 8:
            return number(8) == 0 ? loadState() : activateFactory(number(CPresetRig::kPrograms));
        default:
            return number(2) == 0 ? drag() : change(1 + number(3), -1);
        }
    }

    void compare()
    {
        const CPlainState now = m_rig.state(m_paths);
        for (const std::string& path : m_paths)
            ASSERT_EQ(now.at(path), trimmed(m_model.live().at(path))) << path;
        CArray<CString> labels;
        std::int32_t position = 0;
        m_rig.undo().getHistory(labels, position);
        ASSERT_EQ(static_cast<int>(labels.size()) - 1, m_model.count());
        ASSERT_EQ(position, m_model.position());
        CArray<CString> names;
        std::int32_t program = 0;
        m_rig.master().getPresetNames(false, names, program);
        ASSERT_EQ(program, m_model.program());
        for (std::size_t i = 0; i < names.size(); ++i)
            ASSERT_EQ(names[i].toUtf8(), m_model.names()[i]);
    }

    /// What modules read is what editors see, and what follows from other parameters follows.
    void compareAudio()
    {
        m_rig.params().flushQueue();
        CArray<CAudioParam*> all;
        m_rig.params().listParams(all);
        const CAudioParamGuard guard(m_rig.params());
        for (const CAudioParam* const param : all)
            ASSERT_EQ(trimmed(CPresetRig::groupsOf(param->audioStorage())),
                      trimmed(CPresetRig::groupsOf(param->editStorage(guard))))
                << param->path().toUtf8();
    }

private:
    int number(int count) { return static_cast<int>(m_random() % static_cast<unsigned>(count)); }
    std::string anyPath() { return m_paths[m_random() % m_paths.size()]; }
    int anyGroup(const std::string& path)
    {
        return m_rig.param(path).info()->format.isSingleGroup ? 0 : number(kGroups);
    }
    int anyElement(const std::string& path) { return m_rig.param(path).info()->format.isSingleElement ? 0 : number(5); }
    std::unique_ptr<CAudioParamUndoEntry> begin(int tag = -1)
    {
        m_model.begin(tag);
        auto entry = std::make_unique<CAudioParamUndoEntry>("gesture");
        entry->isMerging = tag >= 0;
        entry->mergeTag = tag;
        return entry;
    }
    void submit(std::unique_ptr<CAudioParamUndoEntry> entry)
    {
        m_rig.undo().submit(std::move(entry));
        m_model.submit();
    }

    void setOne(const std::string& path, int group, int element, CAudioParamUndoEntry& entry)
    {
        const CPlainCell cell = m_rig.randomCell(path, m_random);
        m_rig.set(path, group, element, cell, &entry);
        m_model.set(path, group, element, cell);
    }
    void change(int count, int tag)
    {
        auto entry = begin(tag);
        for (; count > 0; --count) {
            const std::string path = number(6) == 0 ? "modThumpcraft.sat-mode" : anyPath();
            setOne(path, anyGroup(path), anyElement(path), *entry);
        }
        submit(std::move(entry));
    }
    /// Steps of one tag on one element; the tags of neighbouring drags are sometimes equal.
    void drag()
    {
        const std::string path = anyPath();
        const int group = anyGroup(path);
        const int element = anyElement(path);
        const int tag = number(2);
        for (int step = 0; step < 3; ++step) {
            auto entry = begin(tag);
            setOne(path, group, element, *entry);
            submit(std::move(entry));
        }
    }
    void reset()
    {
        const std::string path = anyPath();
        const bool isFirst = number(2) == 0;
        const int group = number(3) == 0 ? -1 : anyGroup(path);
        const int element = number(3) == 0 ? -1 : anyElement(path);
        auto entry = begin();
        m_rig.param(path).resetValues(
            group, element, isFirst ? CAudioParam::EResetFrom::firstElement : CAudioParam::EResetFrom::samePlace,
            {.undo = entry.get()});
        m_model.reset(path, group, element, isFirst);
        // A name that comes from nobody's preset becomes the program's.
        if (path == "preset-name")
            m_model.rename(m_model.live().at(path)[0][0].text);
        submit(std::move(entry));
    }
    void masterReset()
    {
        m_model.begin();
        m_rig.master().masterReset();
        m_model.masterReset();
        m_model.submit();
    }
    void rename()
    {
        const std::string name = "Name: " + std::to_string(number(100));
        m_model.begin();
        m_rig.master().renamePreset(m_model.program(), CString::fromUtf8(name), nullptr);
        m_model.rename("k7rw:" + name);
        m_model.submit();
    }
    CPlainState anyPreset(const std::string& prefix)
    {
        CPlainState preset;
        for (const std::string& path : m_paths) {
            if (!path.starts_with(prefix) || path.starts_with(CPresetRig::kModePrefix) || number(3) == 0)
                continue;
            CPlainGroups& groups = preset[path];
            groups.resize(m_rig.param(path).info()->format.isSingleGroup ? 1 : 1 + static_cast<std::size_t>(number(3)));
            for (CPlainGroup& group : groups)
                for (int count = 1 + anyElement(path); count > 0; --count)
                    group.push_back(m_rig.randomCell(path, m_random));
        }
        return preset;
    }
    void activate(const std::string& registry, const std::string& id, const std::string& prefix, int group)
    {
        const std::string name = id + "Preset " + std::to_string(number(100));
        const CPlainState preset = anyPreset(prefix);
        m_model.begin();
        ASSERT_FALSE(m_rig.registry(registry).activatePreset(plainPreset(name, preset, prefix), nullptr, group));
        m_model.activate(prefix, name, preset, group);
        m_model.submit();
    }
    void activateFactory(int index)
    {
        m_model.begin();
        ASSERT_FALSE(m_rig.master().activateFactoryPreset(index));
        m_model.activate({}, CPresetRig::programName(index), CPresetRig::programState(index), -1);
        m_model.submit();
    }
    void move(int position)
    {
        m_rig.undo().setPosition(position);
        m_model.setPosition(position);
    }
    void setProgram(int index)
    {
        ASSERT_FALSE(m_rig.master().setCurrentProgram(index, nullptr));
        m_model.setProgram(index);
    }
    void updateShadow()
    {
        m_rig.master().updateShadowPreset();
        m_model.updateShadow();
    }
    void exchangeShadow()
    {
        ASSERT_FALSE(m_rig.master().exchangeShadowPreset());
        m_model.exchangeShadow();
    }
    /// A state that was saved a while ago.
    void loadState()
    {
        if (!m_saved.empty()) {
            ASSERT_EQ(m_rig.loadState(m_saved), "");
            m_model.loadState(m_savedName, m_savedState);
        }
        m_saved = m_rig.saveState();
        m_savedName = m_model.names()[static_cast<std::size_t>(m_model.program())];
        m_savedState = m_model.save();
    }

    std::mt19937 m_random{20264};
    CPresetRig m_rig;
    std::vector<std::string> m_paths;
    CPresetModel m_model;
    std::vector<std::uint8_t> m_saved;
    std::string m_savedName;
    CPlainState m_savedState;
};

TEST(TestProductHistory, FollowsAPlainModelThroughRandomGestures)
{
    CSession session;
    session.compare();
    for (int i = 0; i < 10000 && !testing::Test::HasFailure(); ++i) {
        SCOPED_TRACE(i);
        session.step();
        session.compare();
        if (i % 100 == 0)
            session.compareAudio();
    }
}

} // namespace
