// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioParamConverter.h"

namespace qrb {

/// Whole numbers on straight positions; base of what gives them names.
class CAudioParamConverterRound : public CAudioParamConverter {
public:
    [[nodiscard]] double fromNormal(const CAudioParamInfo& info, int c, double n) const override;
    [[nodiscard]] double toNormal(const CAudioParamInfo& info, int c, double value) const override;
    [[nodiscard]] double toDisplay(const CAudioParamInfo& info, int c, double n) const override;
};

} // namespace qrb
