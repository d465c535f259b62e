// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Converters/CAudioParamConverterText.h"

#include "Audio/CAudioParamData.h"
#include "Audio/Converters/ConverterMath.h"
#include "Core/CNumberText.h"

namespace qrb {

double CAudioParamConverterText::parseValue(const CAudioParamInfo&, int, const CString&, bool* outOk) const
{
    answer(outOk, true);
    return 0.0;
}

double CAudioParamConverterText::parseBound(const CAudioParamInfo&, int, const CString&, bool* outOk) const
{
    answer(outOk, true);
    return 0.0;
}

void CAudioParamConverterText::formatValue(CString& out, const CAudioParamInfo&, int, double value,
                                           const CAudioParamData* data, EValueStyle) const
{
    out = data != nullptr ? data->text(roundToInt(value)) : CString();
}

double CAudioParamConverterText::fromNormal(const CAudioParamInfo& info, int c, double n) const
{
    return linearFromNormal(info, c, n);
}

double CAudioParamConverterText::toNormal(const CAudioParamInfo& info, int c, double value) const
{
    return linearToNormal(info, c, value);
}

double CAudioParamConverterText::toDisplay(const CAudioParamInfo& info, int c, double n) const
{
    return fromNormal(info, c, n);
}

} // namespace qrb
