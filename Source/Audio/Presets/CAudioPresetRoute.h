// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioParam.h"
#include "Audio/CAudioParamUpdateList.h"

namespace qrb {

/// The way that many changes go together. If the caller brings no list, and does not want them at once, they pile up in
/// one of this object's own, which goes into the queue in one step at the end of the scope, however that is left.
/// The instance's parameters are held for longer than the scope.
class CAudioPresetRoute {
public:
    CAudioPresetRoute(CAudioParamCollector& collector, const CAudioParamRoute& callersRoute);
    ~CAudioPresetRoute();
    CAudioPresetRoute(const CAudioPresetRoute&) = delete;
    CAudioPresetRoute& operator=(const CAudioPresetRoute&) = delete;

    [[nodiscard]] const CAudioParamRoute& route() const { return m_route; }

private:
    CAudioParamCollector& m_collector;
    CAudioParamUpdateList m_list;
    CAudioParamRoute m_route;
};

} // namespace qrb
