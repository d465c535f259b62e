// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioParamData.h"
#include "Audio/CAudioParamFormat.h"
#include "Core/CArray.h"
#include "Core/CCheckedObject.h"

#include <cstdint>

namespace qrb {

class CAudioParamStorage;
struct CAudioParamUpdate;

/// Which state of a gesture: the one it found or the one it left.
enum class EUndoState { before, after };

/// One group of one parameter, as a gesture found it and as it left it. The template's group number stands for the
/// default elements.
class CAudioParamUndoSnapshot : public CCheckedObject {
public:
    struct CState {
        CArray<double, 2> cells; ///< elements one after the other; keys of `items` unless numbers
        CAudioParamData items;
    };

    CAudioParamUndoSnapshot() = default;
    CAudioParamUndoSnapshot(std::int32_t groupNumber, const CAudioParamFormat& shape);

    /// Copies the group of a storage; nothing if `isEmpty` or if the storage has no such group.
    void take(EUndoState state, const CAudioParamStorage& storage, bool isEmpty);
    /// A record that brings the group back into a state. It refers to this snapshot.
    [[nodiscard]] CAudioParamUpdate record(EUndoState state, const void* source) const;
    /// Whether the other snapshot, taken later, can take the place of this one's end.
    [[nodiscard]] bool canMerge(const CAudioParamUndoSnapshot& later) const;

    [[nodiscard]] const CState& state(EUndoState which) const { return which == EUndoState::before ? before : after; }

    std::int32_t group = 0;
    CAudioParamFormat format;
    CState before;
    CState after;
};

} // namespace qrb
