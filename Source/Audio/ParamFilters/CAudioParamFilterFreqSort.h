// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/ParamFilters/CAudioParamFilter.h"
#include "Audio/ParamFilters/CAudioParamFilterDef.h"

namespace qrb {

/// Puts the frequencies of splits in ascending order. Sources: frequencies, and how many splits there are. Destinations:
/// that many frequencies, and optionally the count of bands.
class CAudioParamFilterFreqSort : public CAudioParamFilter {
public:
    [[nodiscard]] std::size_t getMinSrcCount() const override { return 2; }
    [[nodiscard]] std::size_t getMinDstCount() const override { return 1; }

protected:
    void update(CParamSpan sources, CParamSpan destinations, const CAudioParamFilterRun& run) override;
};

class CAudioParamFilterFreqSortDef : public CAudioParamFilterDefOf<CAudioParamFilterFreqSort> {};

} // namespace qrb
