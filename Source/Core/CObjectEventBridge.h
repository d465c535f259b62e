// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CAttrDictionary.h"
#include "Core/CError.h"

namespace qrb {

/// Carries an event to the thread that owns the bridge, where a CObjectEventBridgeHandler gets it.
class CObjectEventBridge {
public:
    virtual ~CObjectEventBridge() = default;
    /// Queues a copy of the arguments. Thread: any.
    [[nodiscard]] virtual CErrorPtr post(const CEventArgs& args) = 0;
};

} // namespace qrb
