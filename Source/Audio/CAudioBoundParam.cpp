// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioBoundParam.h"

#include "Audio/CAudioParamStorage.h"
#include "Core/CNumberText.h"

namespace qrb {

double CAudioParamSlot::value(int group, int element) const
{
    return storage == nullptr ? unbound : storage->value(group, element, 0, unbound);
}

int CAudioParamSlot::valueInt(int group, int element) const
{
    return roundToInt(value(group, element));
}

int CAudioParamSlot::groupCount() const
{
    return storage == nullptr ? 0 : storage->groupCount();
}

int CAudioParamSlot::elementCount(int group) const
{
    return storage == nullptr ? 0 : storage->elementCount(group);
}

} // namespace qrb
