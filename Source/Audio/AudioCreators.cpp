// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/AudioCreators.h"

#include "Audio/CAudioEnv.h"
#include "Audio/CAudioParamAllocDef.h"
#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioParamDef.h"
#include "Audio/CAudioParamRemapDef.h"
#include "Audio/CAudioParamSharedStorage.h"

namespace qrb {

std::span<const CCreatorRow> audioCreators()
{
    static constexpr CCreatorRow kRows[] = {
        creatorRow<CAudioEnv>("audio:audio-env"),
        creatorRow<CAudioParamDef>("audio:param"),
        creatorRow<CAudioParamAllocDef>("audio:param-alloc"),
        creatorRow<CAudioParamCollector>("audio:param-collector"),
        creatorRow<CAudioParamRemapDef>("audio:param-remap"),
        creatorRow<CAudioParamSharedStorage>("audio:param-shared-storage"),
    };
    return kRows;
}

} // namespace qrb
