// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioParamFormat.h"
#include "Audio/CAudioParamStorage.h"
#include "Core/CArray.h"
#include "Core/CCheckedObject.h"
#include "Core/CString.h"

#include <cstdint>

namespace qrb {

class CAudioParamConverter;

/// What a parameter knows about itself, also sent to editors. Made by a definition, which outlives all instances, and
/// not changed afterwards. Thread: any, once made.
class CAudioParamInfo : public CCheckedObject {
public:
    /// One component of an element.
    struct CComponent {
        CString converterPath;
        const CAudioParamConverter* converter = nullptr;
        double min = 0.0; ///< as declared; may lie above max
        double max = 0.0;
    };

    CAudioParamFormat format;
    bool isGlobal = false;     ///< bound as soon as the graph is read
    bool isStorable = false;   ///< preset content
    bool isPersistent = false; ///< belongs to the instance, not to a preset
    CString visualName;
    CString definitionPath; ///< such as "audio.modMain.gate-params.attack"
    CString registryPath;
    CArray<CComponent, 1> components;
    CArray<CString> longStateNames;
    CArray<CString> shortStateNames;
    CAudioParamStorage defaults;

    /// Group 0's default numbers.
    [[nodiscard]] std::span<const double> defaultCells() const { return defaults.defaultCells(); }
    /// The default number of an element's component, which always exists.
    [[nodiscard]] double defaultValue(std::int32_t element, std::int32_t component) const;
    /// A number held within the bounds of its component, in whichever order they stand.
    [[nodiscard]] double clamped(std::int32_t component, double value) const;
    /// The number itself, or the clamped default if it is not finite.
    [[nodiscard]] double finite(std::int32_t element, std::int32_t component, double value) const;

    CErrorPtr save(COutputStream& out) const;
    /// Reads what save() wrote; converters are looked up in the shared tree. Stays as it was on failure.
    CErrorPtr load(CInputStream& in);
};

} // namespace qrb
