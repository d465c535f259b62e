// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/ParamFilters/CAudioParamFilterRatio.h"

namespace qrb {

void CAudioParamFilterRatio::compute(CStorageSpan sources, std::int32_t group, std::int32_t element,
                                     std::span<double> outValues) const
{
    const double slope = sources[0]->value(group, element, 0, 1.0);
    const bool isExpander = slope > 1.0;
    outValues[0] = isExpander ? 1.0 / slope : slope;
    outValues[1] = isExpander ? 1.0 : 0.0;
    outValues[2] = isExpander ? 0.0 : 1.0;
}

} // namespace qrb
