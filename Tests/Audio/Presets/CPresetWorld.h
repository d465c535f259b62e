// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioParamCollector.h"
#include "Audio/Presets/CAudioParamRegistry.h"
#include "Audio/Presets/CAudioParamUndo.h"
#include "Audio/Presets/CAudioPresetList.h"
#include "Tests/Support/CTempFolders.h"
#include "Tests/Support/CTestModule.h"

#include <atomic>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

namespace qrb {

/// History that counts what it tells.
class CTestUndo : public CAudioParamUndo {
public:
    std::atomic<int> changeCount = 0; ///< told by whichever thread makes a change
    std::function<void()> onChange;   ///< called there

    /// The list, joined with "|", and the position behind it.
    [[nodiscard]] std::string text() const;

protected:
    void onHistoryChanged() override
    {
        ++changeCount;
        if (onChange)
            onChange();
    }
};

/// Values of all bound parameters, texts and numbers, by path; trailing empty groups left out.
using CParamState = std::map<std::string, std::vector<std::vector<std::string>>>;

/// A product of a few parameters with a master registry, a panel with a name of its own, a routing panel and a list of
/// modes that a parameter selects from, element by element.
class CPresetWorld {
public:
    /// Banks and lists come from resources, if any; folders hold the user's files.
    struct COptions {
        std::vector<std::uint8_t> factory = {};       ///< file of the master
        std::vector<std::uint8_t> modes = {};         ///< list of the selector
        std::vector<std::uint8_t> defaultPreset = {}; ///< the user's
    };

    CPresetWorld() : CPresetWorld(COptions{}) {}
    explicit CPresetWorld(const COptions& options);

    [[nodiscard]] CAudioParam& param(const char* name);
    [[nodiscard]] double number(const char* name, int group = 0, int element = 0)
    {
        return param(name).value(group, element);
    }
    [[nodiscard]] std::string text(const char* name, int group = 0) { return param(name).text(group).toUtf8(); }
    /// A change by a user, in an entry of its own unless one is given.
    void set(const char* name, double value, int group = 0, int element = 0, CAudioParamUndoEntry* entry = nullptr);
    void gesture(const char* label, const char* name, double value, int group = 0, int element = 0, int mergeTag = -1);
    [[nodiscard]] CParamState state();
    [[nodiscard]] CAudioPreset captured(CAudioParamRegistry& registry, int group = -1)
    {
        return registry.capture(group);
    }
    /// The lines of the error that an activation gives.
    [[nodiscard]] std::string activate(CAudioParamRegistry& registry, const CAudioPreset& preset, int group = -1,
                                       const void* source = nullptr);
    [[nodiscard]] std::vector<std::string> names(bool isFactory = false);

private:
    CTempFolders m_folders;
    CTestModule m_module;
    CObject& m_root;

public:
    CAudioParamCollector& params;
    CTestUndo& undo;
    CAudioParamRegistry& master;
    CAudioParamRegistry& gate;
    CAudioParamRegistry& io;
    CAudioParamRegistry& modes;
};

/// The bytes that something saves.
template <class T>
[[nodiscard]] std::vector<std::uint8_t> savedBytes(const T& what);
extern template std::vector<std::uint8_t> savedBytes(const CAudioPreset&);
extern template std::vector<std::uint8_t> savedBytes(const CAudioPresetBank&);
extern template std::vector<std::uint8_t> savedBytes(const CAudioPresetList&);

/// A payload in its chunk.
[[nodiscard]] std::vector<std::uint8_t> chunked(const std::vector<std::uint8_t>& payload, std::uint32_t id);

/// A saved parameter of numbers, one vector a group.
[[nodiscard]] CByteArray numberBlob(const std::vector<std::vector<double>>& groups);

/// A preset of single numbers in group 0.
[[nodiscard]] CAudioPreset numberPreset(const char* name, const std::map<std::string, double>& values);

} // namespace qrb
