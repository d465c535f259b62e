// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CArray.h"
#include "Core/CObject.h"
#include "Core/CString.h"

namespace qrb {

/// Hands its attribute "value", usually a live binding, on to the attribute "attr" of each object in "target", paths
/// separated by blanks (tag core:attr-doubler).
class CAttrDoubler : public CObject {
public:
    static void declare(CObjectClassInfo& info);

    [[nodiscard]] CErrorPtr init() override;

    /// Sets the attribute of the targets in their order. Setter of "value".
    [[nodiscard]] virtual CErrorPtr apply(const CObjectAttr& value);

private:
    CArray<CString> m_targetPaths; ///< looked up at each use, since targets may go before this object
    CString m_attr;
};

} // namespace qrb
