// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/ParamFilters/CAudioParamFilterBypassOS.h"

#include "Core/CNumberText.h"

namespace qrb {

void CAudioParamFilterBypassOS::update(CParamSpan sources, CParamSpan destinations, const CAudioParamFilterRun& run)
{
    if (run.record.storageGroup() != 0)
        return;
    const std::int32_t mode = roundToInt(sources[0]->editStorage(run.guard).value(0, 0, 0, 1.0));
    const std::int32_t hostDoublings = roundToInt(sources[1]->editStorage(run.guard).value(0, 0));
    const std::int64_t doublings = mode != 0 ? std::int64_t{mode} - 1 : hostDoublings;
    const double bypass = doublings == 0 ? 1.0 : 0.0;
    writeGroup(*destinations[0], {&bypass, 1}, run);
}

} // namespace qrb
