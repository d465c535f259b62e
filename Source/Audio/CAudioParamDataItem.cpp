// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParamDataItem.h"

#include "Audio/CAudioParamDataItemRaw.h"
#include "Audio/CAudioParamDataItemString.h"
#include "Audio/CAudioParamFormat.h"

namespace qrb {

std::unique_ptr<CAudioParamDataItem> CAudioParamDataItem::make(EAudioParamType type)
{
    switch (type) {
    case EAudioParamType::text:
        return std::make_unique<CAudioParamDataItemString>();
    case EAudioParamType::raw:
        return std::make_unique<CAudioParamDataItemRaw>();
    case EAudioParamType::number:
        break;
    }
    return nullptr;
}

} // namespace qrb
