// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CObject.h"

namespace qrb {

/// Renames parameters of a process's subtree. Child of a process definition.
class CAudioParamRemapDef : public CObject {
public:
    /// Paths relative to the process.
    struct CPair {
        CString original;
        CString renamed;
    };

    static void declare(CObjectClassInfo& info);

    CErrorPtr initChilds() override;

    [[nodiscard]] const CArray<CPair, 1>& pairs() const { return m_pairs; }

private:
    CErrorPtr readItems(const CString& text);

    CArray<CPair, 1> m_pairs;
};

} // namespace qrb
