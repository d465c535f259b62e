// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CArray.h"
#include "Core/CObject.h"

#include <span>

namespace qrb {

class CAudioExtParam;

/// The parameters that a host sees, in declared order (tag audio:ext-param-list).
class CAudioExtParamList : public CObject {
public:
    static void declare(CObjectClassInfo& info);

    CErrorPtr onChildAdded(CObject& child) override;
    void removeChild(CObject& child) override;

    /// Their place is the host's index.
    [[nodiscard]] std::span<CAudioExtParam* const> params() const { return m_params.span(); }

private:
    CArray<CAudioExtParam*> m_params;
};

} // namespace qrb
