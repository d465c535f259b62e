// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace qrb {

/// Receives calls that were put off until no parameter is held, such as a host that is told a value. It takes its calls
/// back with CAudioParamCollector::cancelDeferred before it goes.
class CAudioParamDeferredTarget {
public:
    /// Thread: the instance's owner, with no lock held.
    virtual void onDeferred(std::int32_t index, double value) = 0;

protected:
    ~CAudioParamDeferredTarget() = default;
};

} // namespace qrb
