// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioParamInfo.h"
#include "Core/CObject.h"

namespace qrb {

/// Declares a parameter. Owns its description and default values; part of the shared tree.
class CAudioParamDef : public CObject {
public:
    static void declare(CObjectClassInfo& info);

    CErrorPtr init() override;

    [[nodiscard]] const CAudioParamInfo& info() const { return m_info; }

private:
    CErrorPtr readFormat();
    void readFlags();
    CErrorPtr readConverters();
    CErrorPtr readBounds();
    CErrorPtr readStateNames();
    CErrorPtr readDefaults();
    CErrorPtr readDefaultGroup(std::int32_t group, const CString& text);
    CErrorPtr readDefaultElement(const CString& text, CArray<double, 8>& cells, CAudioParamData& items) const;

    CAudioParamInfo m_info;
};

} // namespace qrb
