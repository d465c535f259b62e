// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Interface/CParamInterfaceRegistryListener.h"

#include <cstdint>
#include <string>
#include <vector>

namespace qrb {
class CAudioInterfaceClient;
}

namespace monitor {

/// The programs of an instance, and what is done with the whole of its settings. Lives no longer than the client.
class CProgramView : public qrb::CParamInterfaceRegistryListener {
public:
    explicit CProgramView(qrb::CAudioInterfaceClient& client);
    ~CProgramView() override;
    CProgramView(const CProgramView&) = delete;
    CProgramView& operator=(const CProgramView&) = delete;

    /// As users see them.
    [[nodiscard]] const std::vector<std::string>& names() const { return m_names; }
    /// -1 for none.
    [[nodiscard]] int current() const { return m_current; }

    /// To the program so many places further on; the last one is followed by the first.
    void step(int count);
    /// Swaps what is heard with what has been put aside.
    void swap();
    /// Puts a copy of what is heard aside.
    void putAside();
    /// All settings back to their defaults.
    void reset();

    qrb::CErrorPtr onConnected() override;
    qrb::CErrorPtr onRegistryUpdate(bool isFactory, const qrb::CString& registryId, std::span<const qrb::CString> names,
                                    std::int32_t currentIndex) override;
    qrb::CErrorPtr onPresetData(std::int32_t tag, const qrb::CAudioPreset& preset) override;
    qrb::CErrorPtr onBankData(std::int32_t tag, const qrb::CAudioPresetBank& bank) override;

private:
    qrb::CAudioInterfaceClient& m_client;
    std::int32_t m_id = 0;
    std::vector<std::string> m_names;
    int m_current = -1;
};

} // namespace monitor
