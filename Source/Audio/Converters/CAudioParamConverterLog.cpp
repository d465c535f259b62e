// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Converters/CAudioParamConverterLog.h"

#include <cmath>
#include <limits>

#include "Audio/Converters/ConverterMath.h"

namespace qrb {

namespace {

/// `position` bent by `power`; 1 leaves it alone to the last bit.
double bend(double position, double power)
{
    return std::abs(power - 1.0) > std::numeric_limits<double>::epsilon() ? std::pow(position, power) : position;
}

} // namespace

CErrorPtr CAudioParamConverterLog::init()
{
    QRB_TRY(CAudioParamConverter::init());
    m_scalePower = getAttrDouble("scale-power", 1.0);
    if (!(m_scalePower > 0.0))
        return QRB_ERROR("@qrbstr_CAudioParamConverterLog_init_InvalidScalePower "
                         "Invalid 'scale-power' attribute value %1 specified.",
                         getAttrString("scale-power"));
    m_scaleThreshold = getAttrDouble("scale-threshold", -1.0);
    if (!(m_scaleThreshold <= 1.0))
        return QRB_ERROR("@qrbstr_CAudioParamConverterLog_init_InvalidScaleThreshold "
                         "Invalid 'scale-threshold' attribute value %1 specified.",
                         getAttrString("scale-threshold"));
    return nullptr;
}

double CAudioParamConverterLog::fromNormal(const CAudioParamInfo& info, int c, double n) const
{
    const double threshold = m_scaleThreshold;
    if (threshold > 0.0 && n >= threshold)
        return std::exp(std::log(highBound(info, c)) * share(n - threshold, 1.0 - threshold));
    const double low = lowBound(info, c);
    const double high = threshold > 0.0 ? 1.0 : highBound(info, c);
    const double position = bend(threshold > 0.0 ? n / threshold : n, 1.0 / m_scalePower);
    return std::exp(std::log(low) + std::log(high / low) * position);
}

double CAudioParamConverterLog::toNormal(const CAudioParamInfo& info, int c, double value) const
{
    const double threshold = m_scaleThreshold;
    if (threshold > 0.0 && value >= 1.0)
        return share(std::log(value), std::log(highBound(info, c))) * (1.0 - threshold) + threshold;
    const double low = lowBound(info, c);
    const double high = threshold > 0.0 ? 1.0 : highBound(info, c);
    const double position = bend(share(std::log(value / low), std::log(high / low)), m_scalePower);
    return threshold > 0.0 ? position * threshold : position;
}

} // namespace qrb
