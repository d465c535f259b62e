// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CModule.h"

namespace qrb {

/// What needs the module's shared objects holds on to them: a host may leave the module before it gives back the last
/// instance. As the first base of a class it lets go behind all else.
class CModuleHold {
public:
    CModuleHold() : m_isHeld(CModule::join()) {}
    ~CModuleHold()
    {
        if (m_isHeld)
            CModule::leave();
    }
    CModuleHold(const CModuleHold&) = delete;
    CModuleHold& operator=(const CModuleHold&) = delete;

    /// False if the module had been left already.
    [[nodiscard]] bool isHeld() const { return m_isHeld; }

private:
    bool m_isHeld;
};

} // namespace qrb
