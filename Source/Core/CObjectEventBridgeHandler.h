// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CAttrDictionary.h"
#include "Core/CError.h"

namespace qrb {

/// The receiving side of an event bridge.
class CObjectEventBridgeHandler {
public:
    virtual ~CObjectEventBridgeHandler() = default;
    /// Runs a posted event. Thread: the one that owns the bridge.
    [[nodiscard]] virtual CErrorPtr handlePostedEvent(const CEventArgs& args) = 0;
};

} // namespace qrb
