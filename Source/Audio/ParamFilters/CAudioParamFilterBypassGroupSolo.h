// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/ParamFilters/CAudioParamFilter.h"
#include "Audio/ParamFilters/CAudioParamFilterDef.h"

namespace qrb {

/// Whether no group is soloed, in one value for all groups.
class CAudioParamFilterBypassGroupSolo : public CAudioParamFilter {
public:
    [[nodiscard]] std::size_t getMinSrcCount() const override { return 1; }
    [[nodiscard]] std::size_t getMinDstCount() const override { return 1; }

protected:
    void update(CParamSpan sources, CParamSpan destinations, const CAudioParamFilterRun& run) override;
};

class CAudioParamFilterBypassGroupSoloDef : public CAudioParamFilterDefOf<CAudioParamFilterBypassGroupSolo> {};

} // namespace qrb
