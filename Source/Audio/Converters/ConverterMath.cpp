// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Converters/ConverterMath.h"

#include <algorithm>
#include <cmath>

#include "Audio/CAudioParamInfo.h"
#include "Core/CNumberText.h"
#include "Core/CString.h"

namespace qrb {

double lowBound(const CAudioParamInfo& info, int c)
{
    return info.components[static_cast<std::size_t>(c)].min;
}

double highBound(const CAudioParamInfo& info, int c)
{
    return info.components[static_cast<std::size_t>(c)].max;
}

double limitToBounds(const CAudioParamInfo& info, int c, double value)
{
    const auto [low, high] = std::minmax({lowBound(info, c), highBound(info, c)});
    return std::clamp(value, low, high);
}

double share(double part, double whole)
{
    return whole == 0.0 ? 0.0 : part / whole;
}

double linearFromNormal(const CAudioParamInfo& info, int c, double n)
{
    const double low = lowBound(info, c);
    return low + (highBound(info, c) - low) * n;
}

double linearToNormal(const CAudioParamInfo& info, int c, double value)
{
    const double low = lowBound(info, c);
    return share(value - low, highBound(info, c) - low);
}

double squareFromNormal(const CAudioParamInfo& info, int c, double n)
{
    const double low = lowBound(info, c);
    return low + (highBound(info, c) - low) * n * n;
}

double squareToNormal(const CAudioParamInfo& info, int c, double value)
{
    return std::sqrt(std::abs(linearToNormal(info, c, value)));
}

int compactDecimals(double shown)
{
    return roundHalfAway(std::abs(shown) * 10.0) < 100 ? 1 : 0;
}

bool answer(bool* outOk, bool ok)
{
    if (outOk != nullptr)
        *outOk = ok;
    return ok;
}

double parseScaled(const CString& text, double scale, double neutral, bool* outOk)
{
    double number = 0.0;
    return answer(outOk, parseNumber(text, number)) ? number * scale : neutral;
}

double parseScaledLimited(const CAudioParamInfo& info, int c, const CString& text, double scale, bool* outOk)
{
    bool ok = false;
    const double value = parseScaled(text, scale, 0.0, &ok);
    return answer(outOk, ok) ? limitToBounds(info, c, value) : lowBound(info, c);
}

} // namespace qrb
