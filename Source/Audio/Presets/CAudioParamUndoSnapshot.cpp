// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Presets/CAudioParamUndoSnapshot.h"

#include "Audio/CAudioParamCells.h"
#include "Audio/CAudioParamStorage.h"
#include "Audio/CAudioParamUpdate.h"

#include <utility>

namespace qrb {

CAudioParamUndoSnapshot::CAudioParamUndoSnapshot(std::int32_t groupNumber, const CAudioParamFormat& shape)
    : group(groupNumber), format(shape)
{
}

void CAudioParamUndoSnapshot::take(EUndoState state, const CAudioParamStorage& storage, bool isEmpty)
{
    CState taken;
    if (!isEmpty && storage.hasData()) {
        taken.cells.appendAll(group == kAudioParamTemplateGroup ? storage.defaultCells() : storage.cells(group));
        if (format.hasItems())
            for (double& key : taken.cells)
                key = taken.items.addCopy(&storage.data(), audioParamKey(key), format.type);
    }
    (state == EUndoState::before ? before : after) = std::move(taken);
}

CAudioParamUpdate CAudioParamUndoSnapshot::record(EUndoState state, const void* source) const
{
    const CState& from = this->state(state);
    CAudioParamUpdate update;
    update.group = group;
    update.elementCount = static_cast<std::int32_t>(from.cells.size() / static_cast<std::size_t>(format.elementSize));
    update.isToEnd = true;
    update.source = source;
    update.format = format;
    update.values = from.cells.data();
    update.data = &from.items;
    return update;
}

bool CAudioParamUndoSnapshot::canMerge(const CAudioParamUndoSnapshot& later) const
{
    return group == later.group && format == later.format && after.cells.size() == later.after.cells.size();
}

} // namespace qrb
