// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/ParamFilters/CAudioParamFilterBypassMS.h"

#include "Core/CNumberText.h"

#include <algorithm>

namespace qrb {

void CAudioParamFilterBypassMS::update(CParamSpan sources, CParamSpan destinations, const CAudioParamFilterRun& run)
{
    const std::int32_t group = run.record.storageGroup();
    const CAudioParamStorage& channels = sources[0]->editStorage(run.guard);
    CArray<std::int32_t, 16> members;
    for (std::int32_t i = 0; i < channels.elementCount(group); ++i) {
        const std::int32_t pair = roundToInt(channels.value(group, i));
        if (pair > 0)
            members.append(pair);
    }
    std::ranges::sort(members.span());
    const bool hasPair = std::adjacent_find(members.begin(), members.end()) != members.end();
    const double bypass = hasPair ? 0.0 : 1.0;
    writeGroup(*destinations[0], {&bypass, 1}, run);
}

} // namespace qrb
