// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/ParamFilters/CAudioParamFilter.h"
#include "Audio/ParamFilters/CAudioParamFilterDef.h"

namespace qrb {

/// Make-up gain of a compressor, a factor: what four levels from soft to full scale lose on average is given back, less
/// so with slow attacks, which let peaks pass. Sources: threshold and slope of the curve, knee, attack and release, and
/// optionally a switch.
class CAudioParamFilterAComp : public CAudioParamFilter {
public:
    [[nodiscard]] std::size_t getMinSrcCount() const override { return 5; }
    [[nodiscard]] std::size_t getMinDstCount() const override { return 1; }

protected:
    void compute(CStorageSpan sources, std::int32_t group, std::int32_t element,
                 std::span<double> outValues) const override;
};

class CAudioParamFilterACompDef : public CAudioParamFilterDefOf<CAudioParamFilterAComp> {};

} // namespace qrb
