// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Presets/CAudioParamRegistryNameListener.h"

#include "Audio/CAudioParamCells.h"
#include "Audio/CAudioParamData.h"
#include "Audio/CAudioParamUpdateInfo.h"
#include "Audio/Presets/CAudioParamRegistry.h"

namespace qrb {

CAudioParamRegistryNameListener::~CAudioParamRegistryNameListener()
{
    detach();
}

void CAudioParamRegistryNameListener::onUpdate(const CUpdateInfo& info)
{
    const CAudioParamUpdate& update = static_cast<const CAudioParamUpdateInfo&>(info).update;
    const bool isName = update.storageGroup() == 0 && update.firstElement == 0 && update.elementCount > 0 &&
                        update.format.type == EAudioParamType::text && update.data != nullptr;
    if (isName && info.sender != &owner())
        owner().onNameParam(update.data->text(audioParamKey(update.values[0])));
}

} // namespace qrb
