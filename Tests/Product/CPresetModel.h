// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Tests/Product/CPresetRig.h"

#include <optional>
#include <set>
#include <utility>

/// What presets, programs, history and A/B do to the parameters of a CPresetRig, told anew in plain maps: nothing is
/// asked of the instance once the model is made.
class CPresetModel {
public:
    explicit CPresetModel(CPresetRig& rig);

    /// One gesture: changes between begin() and submit() can be undone together.
    void begin(int mergeTag = -1);
    void submit();
    void set(const std::string& path, int group, int element, const CPlainCell& cell);
    /// With `isFirst` the value is that of the first element of the first group.
    void reset(const std::string& path, int group, int element, bool isFirst);
    void masterReset();
    /// A preset of the registry whose parameters lie below `prefix`, in a group or in all (-1).
    void activate(const std::string& prefix, const std::string& name, const CPlainState& preset, int group);
    void rename(const std::string& name);
    void setPosition(int position);
    void setProgram(int index);
    void updateShadow();
    void exchangeShadow();
    /// What a host stores, which the current program holds from then on.
    CPlainState save();
    void loadState(const std::string& name, const CPlainState& preset);

    [[nodiscard]] const CPlainState& live() const { return m_live; }
    [[nodiscard]] const std::vector<std::string>& names() const { return m_names; }
    [[nodiscard]] int program() const { return m_program; }
    [[nodiscard]] int count() const { return static_cast<int>(m_history.entries.size()); }
    [[nodiscard]] int position() const { return m_history.position; }

private:
    struct CParam {
        bool isStorable = false;
        bool isPersistent = false;
        bool isSingleGroup = false;
        bool isSelector = false;
        bool isMode = false; ///< set by the selector, and no content of the whole
        CPlainGroups reset;
        CPlainGroup defaults;
    };
    using CPlace = std::pair<std::string, int>;
    struct CEntry {
        int mergeTag = -1;
        std::map<CPlace, CPlainGroup> before;
        std::map<CPlace, CPlainGroup> after;
    };
    struct CHistory {
        std::vector<CEntry> entries;
        int position = 0;
    };
    struct CShadow {
        std::string name;
        CPlainState preset;
        CHistory history;
    };

    [[nodiscard]] const CPlainCell& defaultCell(const CParam& param, std::size_t element) const;
    void setGroup(const std::string& path, int group, CPlainGroup cells);
    void replace(const std::string& path, int group, CPlainGroup cells, bool isSelecting = true);
    void setElement(const std::string& path, int group, std::size_t element, const CPlainCell& cell, bool isToEnd);
    void resetElement(const std::string& path, int group, std::size_t element, bool isFirst, bool isToEnd);
    void resetAll(const std::string& path);
    void select(int group, std::size_t first, const CPlainGroup& cells, bool isToEnd);
    void selectMode(int mode, int group, std::size_t element, bool isToEnd);
    [[nodiscard]] CPlainState captured() const;
    void apply(const std::string& prefix, const CPlainState& preset, int group, bool withPersistent);
    void setNameText(const std::string& path, int group, const std::string& wholeName);

    std::map<std::string, CParam> m_params;
    CPlainState m_live;
    CHistory m_history;
    std::optional<CEntry> m_entry;
    std::vector<std::string> m_names;
    std::vector<CPlainState> m_programs;
    std::vector<CHistory> m_histories;
    int m_program = 0;
    std::optional<CShadow> m_shadow;
};
