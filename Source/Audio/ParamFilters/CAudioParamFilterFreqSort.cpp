// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/ParamFilters/CAudioParamFilterFreqSort.h"

#include "Core/CNumberText.h"

#include <algorithm>

namespace qrb {

void CAudioParamFilterFreqSort::update(CParamSpan sources, CParamSpan destinations, const CAudioParamFilterRun& run)
{
    constexpr double kFallback = 1000.0;
    const std::int32_t group = run.record.storageGroup();
    const std::int32_t count = roundToInt(sources[1]->editStorage(run.guard).value(group, 0));
    if (count < 0 || count > kAudioParamMaxElements)
        return;
    const CAudioParamStorage& frequencies = sources[0]->editStorage(run.guard);
    CArray<double, 8> sorted;
    for (std::int32_t i = 0; i < count; ++i)
        sorted.append(frequencies.value(group, i, 0, kFallback));
    std::ranges::sort(sorted.span());
    writeGroup(*destinations[0], sorted.span(), run);
    if (destinations.size() < 2)
        return;
    const double bandCount = count + 1.0;
    writeGroup(*destinations[1], {&bandCount, 1}, run);
}

} // namespace qrb
