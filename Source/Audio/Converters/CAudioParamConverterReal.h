// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioParamConverter.h"

namespace qrb {

/// Plain numbers.
class CAudioParamConverterReal : public CAudioParamConverter {
public:
    CErrorPtr init() override;
    double parseValue(const CAudioParamInfo& info, int c, const CString& text, bool* outOk) const override;
    double parseBound(const CAudioParamInfo& info, int c, const CString& text, bool* outOk) const override;
    void formatValue(CString& out, const CAudioParamInfo& info, int c, double value, const CAudioParamData* data,
                     EValueStyle style) const override;
    [[nodiscard]] double fromNormal(const CAudioParamInfo& info, int c, double n) const override;
    [[nodiscard]] double toNormal(const CAudioParamInfo& info, int c, double value) const override;
    [[nodiscard]] double toDisplay(const CAudioParamInfo& info, int c, double n) const override;

private:
    int m_decimals = 0;
};

} // namespace qrb
