// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/ParamFilters/CAudioParamFilterBypassGroupSolo.h"

namespace qrb {

void CAudioParamFilterBypassGroupSolo::update(CParamSpan sources, CParamSpan destinations,
                                              const CAudioParamFilterRun& run)
{
    const CAudioParamStorage& solo = sources[0]->editStorage(run.guard);
    double bypass = 1.0;
    for (std::int32_t group = 0; group < solo.groupCount(); ++group)
        if (!solo.cells(group).empty() && solo.cells(group)[0] >= 0.5)
            bypass = 0.0;
    writeGroup(*destinations[0], 0, {&bypass, 1}, run);
}

} // namespace qrb
