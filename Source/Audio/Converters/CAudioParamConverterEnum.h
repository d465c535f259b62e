// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Converters/CAudioParamConverterRound.h"
#include "Core/CArray.h"

namespace qrb {

/// Whole numbers with names: the converter's own, or those of the parameter. Name 0 belongs to the lower bound.
class CAudioParamConverterEnum : public CAudioParamConverterRound {
public:
    CErrorPtr init() override;

    double parseValue(const CAudioParamInfo& info, int c, const CString& text, bool* outOk) const override;
    double parseBound(const CAudioParamInfo& info, int c, const CString& text, bool* outOk) const override;
    void formatValue(CString& out, const CAudioParamInfo& info, int c, double value, const CAudioParamData* data,
                     EValueStyle style) const override;

protected:
    /// Fills the converter's own names at init, two lists of equal length; by default from "state-names".
    virtual CErrorPtr loadStateNames(CArray<CString>& longNames, CArray<CString>& shortNames);

private:
    bool parseIndex(const CAudioParamInfo& info, const CString& text, double base, double& value) const;

    CArray<CString> m_longNames;
    CArray<CString> m_shortNames;
};

} // namespace qrb
