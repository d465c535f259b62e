// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace qrb {

/// What the cells of a parameter hold: a number, or the key of a text or of a byte block in an item table.
enum class EAudioParamType : std::int32_t { number = 0, text = 1, raw = 2 };

/// Group number that means the template: a record of it replaces the default elements, then applies as group 0.
inline constexpr std::int32_t kAudioParamTemplateGroup = 9999;

/// Bounds that outside data is held to; a change masks the groups into 32 bits.
inline constexpr std::int32_t kAudioParamMaxGroups = 32;
inline constexpr std::int32_t kAudioParamMaxElements = 4096;
inline constexpr std::int32_t kAudioParamMaxElementSize = 256;

/// Shape of a parameter. A record and a storage fit together only when all of it is equal.
struct CAudioParamFormat {
    std::int32_t elementSize = 1; ///< components of an element; 1 unless numbers
    EAudioParamType type = EAudioParamType::number;
    bool isSingleGroup = false;   ///< group 0 stands for all groups
    bool isSingleElement = false; ///< element 0 stands for all elements

    [[nodiscard]] bool hasItems() const { return type != EAudioParamType::number; }
    /// Whether such a parameter can be: items have one component, numbers at least one.
    [[nodiscard]] bool isValid() const
    {
        switch (type) {
        case EAudioParamType::number:
            return elementSize > 0 && elementSize <= kAudioParamMaxElementSize;
        case EAudioParamType::text:
        case EAudioParamType::raw:
            return elementSize == 1;
        }
        return false;
    }
    bool operator==(const CAudioParamFormat&) const = default;
};

} // namespace qrb
