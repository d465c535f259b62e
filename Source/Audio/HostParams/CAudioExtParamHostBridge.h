// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioParamDeferredTarget.h"

#include <cstdint>

namespace qrb {

/// The side of an instance that tells the host about values which changed inside.
class CAudioExtParamHostBridge : public CAudioParamDeferredTarget {
public:
    /// A host parameter has another value now. Thread: the instance's owner, with no lock held.
    virtual void onExtParamChange(std::int32_t index, double normal) = 0;

    void onDeferred(std::int32_t index, double value) final { onExtParamChange(index, value); }

protected:
    ~CAudioExtParamHostBridge() = default;
};

} // namespace qrb
