// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioParamConverter.h"

namespace qrb {

/// Logarithmic positions, optionally bent by a power, optionally with the stored value 1.0 at a chosen position.
///
/// With a threshold above 0, positions from 0 to it run from the minimum to 1.0 (with the power curve), those above it
/// from 1.0 to the maximum.
class CAudioParamConverterLog : public CAudioParamConverter {
public:
    CErrorPtr init() override;
    [[nodiscard]] double fromNormal(const CAudioParamInfo& info, int c, double n) const override;
    [[nodiscard]] double toNormal(const CAudioParamInfo& info, int c, double value) const override;

private:
    double m_scalePower = 1.0;
    double m_scaleThreshold = -1.0;
};

} // namespace qrb
