// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/ParamFilters/CAudioParamFilter.h"
#include "Audio/ParamFilters/CAudioParamFilterDef.h"

namespace qrb {

/// Whether mid-side coders have nothing to do: 0 if two channels at least are of one pair. The source gives the number of
/// the pair for each channel, 0 for none.
class CAudioParamFilterBypassMS : public CAudioParamFilter {
public:
    [[nodiscard]] std::size_t getMinSrcCount() const override { return 1; }
    [[nodiscard]] std::size_t getMinDstCount() const override { return 1; }

protected:
    void update(CParamSpan sources, CParamSpan destinations, const CAudioParamFilterRun& run) override;
};

class CAudioParamFilterBypassMSDef : public CAudioParamFilterDefOf<CAudioParamFilterBypassMS> {};

} // namespace qrb
