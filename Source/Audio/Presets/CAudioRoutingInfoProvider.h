// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace qrb {

struct CAudioParamRoute;

/// Who keeps the routing in step with the host's channels after presets have rewritten it.
class CAudioRoutingInfoProvider {
public:
    /// A preset was activated, or all was reset; changes of the routing go the same way. Called with the instance's
    /// parameters held. Thread: any.
    virtual void applyDefaultRouting(const CAudioParamRoute& route) = 0;

protected:
    ~CAudioRoutingInfoProvider() = default;
};

} // namespace qrb
