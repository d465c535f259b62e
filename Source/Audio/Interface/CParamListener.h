// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CUpdateListener.h"

#include <cstdint>

namespace qrb {

class CAudioParam;
class CAudioParamGuard;
class CParamInterfaceBaseConnector;
struct CAudioParamUpdate;

/// Sends a client what happens to one parameter, the client's own changes too.
class CParamListener : public CUpdateListener {
public:
    CParamListener(std::int32_t id, CAudioParam& param, CParamInterfaceBaseConnector& connector);
    ~CParamListener() override;

    [[nodiscard]] CAudioParam& param() const { return m_param; }
    /// From now on changes are sent, behind the state as it is.
    void start();
    /// Sends the description, default elements and all groups, or that there are none yet.
    void sendState(const CAudioParamGuard& guard);

    void onUpdate(const CUpdateInfo& info) override;

private:
    void sendInfo(const CAudioParamUpdate* value);
    void sendValue(const CAudioParamUpdate& update);

    std::int32_t m_id;
    CAudioParam& m_param;
    CParamInterfaceBaseConnector& m_connector;
    std::int32_t m_toldGroups = 1; ///< behind the last group that was told; guarded by the parameters' lock
};

} // namespace qrb
