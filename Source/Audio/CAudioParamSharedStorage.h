// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CObject.h"

namespace qrb {

class CAppData;

/// Declares that a parameter is mirrored in a block of application data. Child of a process definition.
class CAudioParamSharedStorage : public CObject {
public:
    static void declare(CObjectClassInfo& info);

    CErrorPtr init() override;

    /// Path relative to the process.
    [[nodiscard]] const CString& paramName() const { return m_paramName; }
    [[nodiscard]] const CString& dataName() const { return m_dataName; }
    [[nodiscard]] CAppData& storage() const { return *m_storage; }

private:
    CString m_paramName;
    CString m_dataName;
    CAppData* m_storage = nullptr;
};

} // namespace qrb
