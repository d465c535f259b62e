// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CObject.h"

namespace qrb {

/// Binds one index of a module's parameter table to a parameter. Child of a process definition.
class CAudioParamAllocDef : public CObject {
public:
    static void declare(CObjectClassInfo& info);

    CErrorPtr init() override;

    /// What a module calls the value: the object's name, less the number that tells it from a parameter declared beside it
    /// under the same name.
    [[nodiscard]] CString slotName() const;
    /// Path relative to the process.
    [[nodiscard]] const CString& paramName() const { return m_paramName; }
    [[nodiscard]] std::int32_t index() const { return m_index; }
    [[nodiscard]] bool useAllGroups() const { return m_useAllGroups; }
    [[nodiscard]] bool useAllElements() const { return m_useAllElements; }
    [[nodiscard]] bool isSmoothUpdate() const { return m_isSmoothUpdate; }

private:
    CString m_paramName;
    std::int32_t m_index = 0;
    bool m_useAllGroups = false;
    bool m_useAllElements = false;
    bool m_isSmoothUpdate = false;
};

} // namespace qrb
