// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tests/Product/CPresetModel.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr const char* kPresetName = "preset-name";
constexpr std::size_t kMaxEntries = 32;
/// Panels whose presets have a name, which a change by hand takes away.
constexpr const char* kNamedPanels[] = {"modThumpcraft.gate-params.", "modThumpcraft.spectrum-params."};

std::string visibleName(const std::string& name)
{
    return name.substr(name.find(':') + 1);
}

} // namespace

CPresetModel::CPresetModel(CPresetRig& rig)
{
    const std::vector<std::string> paths = rig.contentPaths();
    const qrb::CAudioParamGuard guard(rig.params());
    for (const std::string& path : paths) {
        const qrb::CAudioParam& real = rig.param(path);
        CParam& param = m_params[path];
        param.isStorable = real.info()->isStorable;
        param.isPersistent = real.info()->isPersistent;
        param.isSingleGroup = real.info()->format.isSingleGroup;
        param.isSelector = !real.info()->registryPath.empty();
        param.isMode = path.starts_with(CPresetRig::kModePrefix);
        m_live[path] = CPresetRig::groupsOf(real.editStorage(guard));
        param.reset = CPresetRig::groupsOf(real.resetStorage(guard));
        const qrb::CAudioParamStorage& defaults = real.info()->defaults;
        param.defaults = groupOf(CPresetRig::groupsOf(defaults), 0);
    }
    for (int i = 0; i < CPresetRig::kPrograms; ++i) {
        m_names.push_back(CPresetRig::programName(i));
        m_programs.push_back(CPresetRig::programState(i));
    }
    m_histories.resize(m_names.size());
}

void CPresetModel::begin(int mergeTag)
{
    m_entry.emplace().mergeTag = mergeTag;
}

void CPresetModel::submit()
{
    CEntry entry = std::move(*m_entry);
    m_entry.reset();
    if (entry.before.empty())
        return;
    auto& [entries, position] = m_history;
    const auto isAlike = [](const auto& a, const auto& b) {
        return a.first == b.first && a.second.size() == b.second.size();
    };
    if (position > 0 && entry.mergeTag >= 0 &&
        entries[static_cast<std::size_t>(position) - 1].mergeTag == entry.mergeTag) {
        CEntry& last = entries[static_cast<std::size_t>(position) - 1];
        if (std::ranges::equal(last.after, entry.after, isAlike)) {
            last.after = std::move(entry.after);
            return;
        }
    }
    entries.resize(static_cast<std::size_t>(position));
    if (entries.size() == kMaxEntries)
        entries.erase(entries.begin());
    entries.push_back(std::move(entry));
    position = static_cast<int>(entries.size());
}

const CPlainCell& CPresetModel::defaultCell(const CParam& param, std::size_t element) const
{
    return param.defaults[element < param.defaults.size() ? element : 0];
}

void CPresetModel::setGroup(const std::string& path, int group, CPlainGroup cells)
{
    CPlainGroups& groups = m_live[path];
    groups.resize(std::max(groups.size(), static_cast<std::size_t>(group) + 1));
    groups[static_cast<std::size_t>(group)] = std::move(cells);
}

void CPresetModel::replace(const std::string& path, int group, CPlainGroup cells, bool isSelecting)
{
    if (m_entry) {
        m_entry->before.try_emplace({path, group}, groupOf(m_live[path], group));
        m_entry->after[{path, group}] = cells;
    }
    setGroup(path, group, cells);
    if (isSelecting && m_params[path].isSelector)
        select(group, 0, cells, true);
}

void CPresetModel::setElement(const std::string& path, int group, std::size_t element, const CPlainCell& cell,
                              bool isToEnd)
{
    const CParam& param = m_params[path];
    CPlainGroup cells = groupOf(m_live[path], group);
    const std::size_t first = std::min(cells.size(), element);
    while (cells.size() <= element)
        cells.push_back(defaultCell(param, cells.size()));
    cells[element] = cell;
    if (isToEnd)
        cells.resize(element + 1);
    replace(path, group, cells, false);
    const auto place = [](std::size_t index) { return static_cast<std::ptrdiff_t>(index); };
    if (param.isSelector)
        select(group, first, {cells.begin() + place(first), cells.begin() + place(element) + 1}, isToEnd);
}

void CPresetModel::resetElement(const std::string& path, int group, std::size_t element, bool isFirst, bool isToEnd)
{
    const CParam& param = m_params[path];
    const CPlainGroup& cells = groupOf(param.reset, isFirst ? 0 : group);
    const std::size_t from = isFirst ? 0 : element;
    setElement(path, group, element, from < cells.size() ? cells[from] : defaultCell(param, element), isToEnd);
}

void CPresetModel::resetAll(const std::string& path)
{
    const CParam& param = m_params[path];
    const int groups = static_cast<int>(std::max(param.reset.size(), m_live[path].size()));
    for (int group = 0; group < groups; ++group)
        replace(path, group, groupOf(param.reset, group));
}

void CPresetModel::select(int group, std::size_t first, const CPlainGroup& cells, bool isToEnd)
{
    for (std::size_t i = 0; i < cells.size(); ++i)
        selectMode(static_cast<int>(std::lround(cells[i].number)), group, first + i, isToEnd && i == cells.size() - 1);
    if (!cells.empty() || first > 0 || !isToEnd)
        return;
    for (const auto& [path, param] : m_params)
        if (param.isMode)
            replace(path, group, groupOf(param.reset, group));
}

void CPresetModel::selectMode(int mode, int group, std::size_t element, bool isToEnd)
{
    const CPlainState preset = mode < CPresetRig::kModes ? CPresetRig::modeState(mode) : CPlainState();
    for (const auto& [path, param] : m_params) {
        if (!param.isMode)
            continue;
        const auto item = preset.find(path);
        if (item != preset.end())
            setElement(path, group, element, item->second[0][0], isToEnd);
        else
            resetElement(path, group, element, false, isToEnd);
    }
}

void CPresetModel::set(const std::string& path, int group, int element, const CPlainCell& cell)
{
    for (const char* const panel : kNamedPanels) {
        const std::string name = std::string(panel) + "mode-name";
        if (path.starts_with(panel) && path != name) {
            const CPlainGroup& shown = groupOf(m_live[name], group);
            if (shown.empty() || shown[0].text != "User")
                setElement(name, m_params[name].isSingleGroup ? 0 : group, 0, {0.0, "User"}, false);
        }
    }
    setElement(path, group, static_cast<std::size_t>(element), cell, false);
    if (path == kPresetName)
        setNameText(path, 0, cell.text);
}

void CPresetModel::setNameText(const std::string& path, int group, const std::string& wholeName)
{
    const std::string name = visibleName(wholeName);
    setElement(path, group, 0, {0.0, name}, false);
    if (path == kPresetName)
        m_names[static_cast<std::size_t>(m_program)] = "k7rw:" + name;
}

void CPresetModel::reset(const std::string& path, int group, int element, bool isFirst)
{
    if (group < 0)
        resetAll(path);
    else if (element < 0)
        replace(path, group, groupOf(m_params[path].reset, isFirst ? 0 : group));
    else
        resetElement(path, group, static_cast<std::size_t>(element), isFirst, false);
}

void CPresetModel::masterReset()
{
    for (const auto& [path, param] : m_params)
        if (param.isStorable && !param.isMode)
            resetAll(path);
    setNameText(kPresetName, 0, groupOf(m_live[kPresetName], 0)[0].text);
}

void CPresetModel::apply(const std::string& prefix, const CPlainState& preset, int group, bool withPersistent)
{
    for (const auto& [path, param] : m_params) {
        const bool isContent = param.isStorable || (withPersistent && param.isPersistent);
        if (!isContent || param.isMode || !path.starts_with(prefix) || (param.isSingleGroup && group > 0))
            continue;
        const auto item = preset.find(path);
        if (group < 0 && item == preset.end()) {
            resetAll(path);
        } else if (group < 0) {
            const int groups = static_cast<int>(std::max(item->second.size(), m_live[path].size()));
            for (int g = 0; g < groups; ++g)
                replace(path, g, groupOf(item->second, g));
            m_live[path].resize(item->second.size());
        } else if (item == preset.end()) {
            replace(path, group, groupOf(param.reset, group));
        } else if (!groupOf(item->second, 0).empty()) {
            replace(path, group, item->second[0]);
        }
    }
}

void CPresetModel::activate(const std::string& prefix, const std::string& name, const CPlainState& preset, int group)
{
    apply(prefix, preset, group, false);
    const std::string nameParam = prefix.empty() ? kPresetName : prefix + "mode-name";
    if (m_params.contains(nameParam))
        setNameText(nameParam, m_params[nameParam].isSingleGroup ? 0 : std::max(group, 0), name);
}

void CPresetModel::rename(const std::string& name)
{
    setNameText(kPresetName, 0, name);
}

void CPresetModel::setPosition(int position)
{
    const auto restore = [this](const std::map<CPlace, CPlainGroup>& groups) {
        for (const auto& [place, cells] : groups) {
            setGroup(place.first, place.second, cells);
            if (place.first == kPresetName)
                m_names[static_cast<std::size_t>(m_program)] = "k7rw:" + cells[0].text;
        }
    };
    for (; m_history.position < position; ++m_history.position)
        restore(m_history.entries[static_cast<std::size_t>(m_history.position)].after);
    for (; m_history.position > position; --m_history.position)
        restore(m_history.entries[static_cast<std::size_t>(m_history.position) - 1].before);
}

CPlainState CPresetModel::captured() const
{
    CPlainState preset;
    for (const auto& [path, param] : m_params)
        if (!param.isMode)
            preset[path] = m_live.at(path);
    return preset;
}

CPlainState CPresetModel::save()
{
    return m_programs[static_cast<std::size_t>(m_program)] = captured();
}

void CPresetModel::setProgram(int index)
{
    if (index == m_program)
        return;
    save();
    m_histories[static_cast<std::size_t>(m_program)] =
        std::exchange(m_history, m_histories[static_cast<std::size_t>(index)]);
    m_program = index;
    apply({}, m_programs[static_cast<std::size_t>(index)], -1, false);
    setNameText(kPresetName, 0, m_names[static_cast<std::size_t>(index)]);
}

void CPresetModel::updateShadow()
{
    m_shadow = {m_names[static_cast<std::size_t>(m_program)], captured(), m_history};
}

void CPresetModel::exchangeShadow()
{
    if (!m_shadow)
        updateShadow();
    const CShadow other = *m_shadow;
    updateShadow();
    apply({}, other.preset, -1, false);
    setNameText(kPresetName, 0, other.name);
    m_history = other.history;
}

void CPresetModel::loadState(const std::string& name, const CPlainState& preset)
{
    const auto known = std::ranges::find(m_names, name);
    m_program = known != m_names.end() ? static_cast<int>(known - m_names.begin()) : 0;
    apply({}, preset, -1, true);
    setNameText(kPresetName, 0, name);
    m_history = {};
    m_histories.assign(m_names.size(), {});
    m_shadow.reset();
}
