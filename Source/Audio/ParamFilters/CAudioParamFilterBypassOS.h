// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/ParamFilters/CAudioParamFilter.h"
#include "Audio/ParamFilters/CAudioParamFilterDef.h"

namespace qrb {

/// Whether resamplers have nothing to do: 1 if the rate is not multiplied. Sources: 0 for what the host wants, or doublings
/// plus 1; and the doublings that the host wants.
class CAudioParamFilterBypassOS : public CAudioParamFilter {
public:
    [[nodiscard]] std::size_t getMinSrcCount() const override { return 2; }
    [[nodiscard]] std::size_t getMinDstCount() const override { return 1; }

protected:
    void update(CParamSpan sources, CParamSpan destinations, const CAudioParamFilterRun& run) override;
};

class CAudioParamFilterBypassOSDef : public CAudioParamFilterDefOf<CAudioParamFilterBypassOS> {};

} // namespace qrb
