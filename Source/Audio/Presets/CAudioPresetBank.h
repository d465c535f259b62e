// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Presets/CAudioPreset.h"

#include <cstdint>

namespace qrb {

/// A named row of presets, such as the programs of a session.
class CAudioPresetBank : public CCheckedObject {
public:
    [[nodiscard]] std::int32_t count() const { return static_cast<std::int32_t>(presets.size()); }
    [[nodiscard]] bool has(std::int32_t index) const { return index >= 0 && index < count(); }
    [[nodiscard]] CAudioPreset& at(std::int32_t index) { return presets[static_cast<std::size_t>(index)]; }
    [[nodiscard]] const CAudioPreset& at(std::int32_t index) const { return presets[static_cast<std::size_t>(index)]; }

    /// Name, count, presets.
    CErrorPtr save(COutputStream& out) const;
    /// Reads what save() wrote. Stays as it was on failure.
    CErrorPtr load(CInputStream& in);
    CErrorPtr load(CInputStream& in, CAudioPresetBudget& budget);

    CString name;
    CArray<CAudioPreset> presets;
};

} // namespace qrb
