// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Converters/CAudioParamConverterLog.h"

namespace qrb {

/// Frequencies in hertz; "1.5k" is 1500.
class CAudioParamConverterFreq : public CAudioParamConverterLog {
public:
    double parseValue(const CAudioParamInfo& info, int c, const CString& text, bool* outOk) const override;
    double parseBound(const CAudioParamInfo& info, int c, const CString& text, bool* outOk) const override;
    void formatValue(CString& out, const CAudioParamInfo& info, int c, double value, const CAudioParamData* data,
                     EValueStyle style) const override;
    [[nodiscard]] double toDisplay(const CAudioParamInfo& info, int c, double n) const override;
};

} // namespace qrb
