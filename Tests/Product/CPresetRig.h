// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioParamCollector.h"
#include "Audio/Presets/CAudioParamRegistry.h"
#include "Audio/Presets/CAudioParamUndo.h"
#include "Tools/Product/CDocumentModule.h"
#include "Tools/Render/CRenderInstance.h"

#include <cstdint>
#include <map>
#include <memory>
#include <ostream>
#include <random>
#include <string>
#include <vector>

/// One element of a parameter: a number or a text.
struct CPlainCell {
    double number = 0.0;
    std::string text;

    [[nodiscard]] bool operator==(const CPlainCell& other) const; ///< to the bit
    friend std::ostream& operator<<(std::ostream& out, const CPlainCell& cell)
    {
        return out << cell.number << cell.text;
    }
};

using CPlainGroup = std::vector<CPlainCell>;
/// Elements by group.
using CPlainGroups = std::vector<CPlainGroup>;
/// Parameters by their path below plugin.modMain.
using CPlainState = std::map<std::string, CPlainGroups>;

/// The group, empty if it does not exist.
[[nodiscard]] const CPlainGroup& groupOf(const CPlainGroups& groups, int group);
/// The same without empty groups at the end, which nobody sees.
[[nodiscard]] CPlainGroups trimmed(CPlainGroups groups);

/// An instance of the product, with programs and saturator modes of the test's own unless those it ships are wished.
class CPresetRig {
public:
    enum class EContent { own, shipped };
    static constexpr int kPrograms = 3;
    static constexpr int kModes = 4;
    static constexpr const char* kModePrefix = "modThumpcraft.xotube-params.";

    explicit CPresetRig(EContent content = EContent::own);
    ~CPresetRig();

    [[nodiscard]] render::CRenderInstance& instance() { return *m_instance; }
    [[nodiscard]] qrb::CAudioParamCollector& params() { return m_instance->paramCollector(); }
    [[nodiscard]] qrb::CAudioParam& param(const std::string& path);
    [[nodiscard]] qrb::CAudioParamRegistry& master() { return *m_instance->paramRegistry(); }
    [[nodiscard]] qrb::CAudioParamRegistry& registry(const std::string& name);
    [[nodiscard]] qrb::CAudioParamUndo& undo();

    /// The test's own programs and modes, as what they hold.
    [[nodiscard]] static std::string programName(int index);
    [[nodiscard]] static CPlainState programState(int index);
    [[nodiscard]] static CPlainState modeState(int index);

    /// Paths of what presets or the instance hold, those of saturator modes included.
    [[nodiscard]] std::vector<std::string> contentPaths();
    [[nodiscard]] static CPlainGroups groupsOf(const qrb::CAudioParamStorage& storage);
    /// What editors see of these parameters, trimmed.
    [[nodiscard]] CPlainState state(const std::vector<std::string>& paths);
    /// A value that the parameter may have: never out of bounds, seldom a round one.
    [[nodiscard]] CPlainCell randomCell(const std::string& path, std::mt19937& random);
    void set(const std::string& path, int group, int element, const CPlainCell& cell,
             qrb::CAudioParamUndoEntry* entry = nullptr);
    /// Gives every parameter that presets or the instance hold new values, here and there more or fewer of them.
    void randomize(std::mt19937& random);
    [[nodiscard]] int programCount();

    [[nodiscard]] std::vector<std::uint8_t> saveState();
    [[nodiscard]] std::string loadState(const std::vector<std::uint8_t>& bytes);

private:
    std::unique_ptr<product::CDocumentModule> m_module;
    std::unique_ptr<render::CRenderInstance> m_instance;
};

/// A preset of that name and content, with keys below `prefix`.
[[nodiscard]] qrb::CAudioPreset plainPreset(const std::string& name, const CPlainState& state,
                                            const std::string& prefix = {});
