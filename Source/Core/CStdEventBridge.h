// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CObject.h"
#include "Core/CObjectEventBridgeHandler.h"

namespace qrb {

/// Finds the listener of a posted event in this object's tree and runs its handler there.
class CStdEventBridge : public CObject, public CObjectEventBridgeHandler {
public:
    static void declare(CObjectClassInfo& info);

    /// An event whose listener is gone, even if another object has its name by now, is dropped without error.
    [[nodiscard]] CErrorPtr handlePostedEvent(const CEventArgs& args) override;
};

} // namespace qrb
