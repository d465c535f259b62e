// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioParamInfo.h"
#include "Audio/CAudioParamStorage.h"
#include "Audio/Interface/CParamInterfaceParamListener.h"
#include "Core/CString.h"

#include <cstdint>

namespace qrb {

/// A client's copy of the parameter that names the groups.
class CGroupNamesParamListener : public CParamInterfaceParamListener {
public:
    CErrorPtr onParamInfo(CInputStream& in) override;
    CErrorPtr onParamValue(const CAudioParamUpdate& update) override;

    /// Whether there are names.
    [[nodiscard]] bool hasNames() const { return m_values.hasData() && m_info.format.type == EAudioParamType::text; }
    [[nodiscard]] const CString& name(std::int32_t group) const { return m_values.text(0, group); }

private:
    CAudioParamInfo m_info;
    CAudioParamStorage m_values;
};

} // namespace qrb
