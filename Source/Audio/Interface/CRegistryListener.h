// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CString.h"
#include "Core/CUpdateListener.h"

#include <cstdint>

namespace qrb {

class CAudioParamRegistry;
class CParamInterfaceBaseConnector;

/// Sends a client the names of a registry's presets when they change.
class CRegistryListener : public CUpdateListener {
public:
    /// `registry`: null if there is none at the path.
    CRegistryListener(std::int32_t id, const CString& path, CAudioParamRegistry* registry,
                      CParamInterfaceBaseConnector& connector);
    ~CRegistryListener() override;

    [[nodiscard]] const CString& path() const { return m_path; }
    /// Null if there is none at the path, or no longer.
    [[nodiscard]] CAudioParamRegistry* registry();
    /// Sends the names of the session, and a master's built-in ones.
    void sendState();

    void onUpdate(const CUpdateInfo& info) override;

private:
    void sendNames(bool isFactory);

    std::int32_t m_id;
    CString m_path;
    CAudioParamRegistry* m_registry;
    CParamInterfaceBaseConnector& m_connector;
    /// Held from the look at the names until they are sent, so that the last to be sent are the newest. Taken before the
    /// registry's bank.
    platform::CRecursiveLock m_sendLock{50};
};

} // namespace qrb
