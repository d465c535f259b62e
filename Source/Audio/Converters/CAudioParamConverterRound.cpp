// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Converters/CAudioParamConverterRound.h"

#include "Audio/Converters/ConverterMath.h"
#include "Core/CNumberText.h"

namespace qrb {

double CAudioParamConverterRound::fromNormal(const CAudioParamInfo& info, int c, double n) const
{
    return static_cast<double>(roundHalfAway(linearFromNormal(info, c, n)));
}

double CAudioParamConverterRound::toNormal(const CAudioParamInfo& info, int c, double value) const
{
    return linearToNormal(info, c, value);
}

double CAudioParamConverterRound::toDisplay(const CAudioParamInfo& info, int c, double n) const
{
    return fromNormal(info, c, n);
}

} // namespace qrb
