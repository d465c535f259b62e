// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioParamFormat.h"
#include "Core/CError.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace qrb {

class CAudioParamData;
class CAudioParamUpdateHolder;
class CInputStream;
class COutputStream;

/// One change of a parameter, handed by value through all layers. It refers to its values; who makes it keeps them for
/// the length of the call.
struct CAudioParamUpdate {
    std::int32_t group = 0; ///< kAudioParamTemplateGroup for the template
    std::int32_t firstElement = 0;
    std::int32_t elementCount = 0;
    bool isToEnd = false;         ///< defines all elements from the first on: the group is shortened to end behind them
    const void* source = nullptr; ///< who caused the change, only compared
    CAudioParamFormat format;
    const double* values = nullptr;        ///< elementCount * elementSize cells; may be null without elements
    const CAudioParamData* data = nullptr; ///< where keys of texts and byte blocks resolve

    [[nodiscard]] bool isTemplate() const { return group == kAudioParamTemplateGroup; }
    /// The group that is written: 0 for the template.
    [[nodiscard]] std::int32_t storageGroup() const { return isTemplate() ? 0 : group; }
    [[nodiscard]] std::int32_t endElement() const { return firstElement + elementCount; }
    [[nodiscard]] std::size_t cellCount() const
    {
        return static_cast<std::size_t>(elementCount) * static_cast<std::size_t>(format.elementSize);
    }
    [[nodiscard]] std::span<const double> cells() const { return {values, values != nullptr ? cellCount() : 0}; }
    /// Whether group, range and format are within the bounds of a parameter and the values are there.
    [[nodiscard]] bool isValid() const;

    CErrorPtr save(COutputStream& out) const;
    /// Reads a record whose values and items are then kept by `holder`. `source` is left null.
    CErrorPtr load(CInputStream& in, CAudioParamUpdateHolder& holder);
};

} // namespace qrb
