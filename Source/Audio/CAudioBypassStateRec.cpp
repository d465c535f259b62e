// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioBypassStateRec.h"

#include "Audio/CAudioParamStorage.h"
#include "Audio/CAudioProcessBypassStateDef.h"

#include <utility>

namespace qrb {

bool CAudioBypassStateRec::isOfId(int id) const
{
    return definition->id() == id;
}

bool CAudioBypassStateRec::evaluate(int group, int element)
{
    const auto valueOf = [&](const CAudioBoundParam& bound) {
        return bound.storage == nullptr ? 0.0 : bound.storage->value(group, element);
    };
    const bool before = std::exchange(holds, definition->holds(valueOf(param), valueOf(andParam)));
    return holds != before;
}

} // namespace qrb
