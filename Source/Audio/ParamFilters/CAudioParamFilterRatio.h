// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/ParamFilters/CAudioParamFilter.h"
#include "Audio/ParamFilters/CAudioParamFilterDef.h"

namespace qrb {

/// Takes the slope of a compressor apart: a slope from 0 to 1, whether that is to be inverted, since the compressor
/// expands, and whether it is not.
class CAudioParamFilterRatio : public CAudioParamFilter {
public:
    [[nodiscard]] std::size_t getMinSrcCount() const override { return 1; }
    [[nodiscard]] std::size_t getMinDstCount() const override { return 3; }

protected:
    void compute(CStorageSpan sources, std::int32_t group, std::int32_t element,
                 std::span<double> outValues) const override;
};

class CAudioParamFilterRatioDef : public CAudioParamFilterDefOf<CAudioParamFilterRatio> {};

} // namespace qrb
