// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioParamInfo.h"
#include "Audio/CAudioParamStorage.h"
#include "Audio/Interface/CParamInterfaceParamListener.h"

#include <cstdint>
#include <string>

namespace qrb {
class CAudioInterfaceClient;
}

namespace monitor {

/// An editor's copy of one parameter, and how a user changes it. Lives no longer than the client.
class CParamView : public qrb::CParamInterfaceParamListener {
public:
    /// `path`: below plugin.modMain. `steps`: from one end of the range to the other; parameters with states go state
    /// by state.
    CParamView(qrb::CAudioInterfaceClient& client, const std::string& path, int steps = 0);
    ~CParamView() override;
    CParamView(const CParamView&) = delete;
    CParamView& operator=(const CParamView&) = delete;

    /// Whether the parameter exists so far.
    [[nodiscard]] bool isKnown() const { return !m_info.components.empty() && m_values.hasData(); }
    /// What a user calls the parameter; empty where nobody has named it.
    [[nodiscard]] std::string name() const { return m_info.visualName.toUtf8(); }
    /// The value as a user reads it, with its unit.
    [[nodiscard]] std::string text(int group, int element) const;
    [[nodiscard]] double value(int group, int element) const { return m_values.value(group, element); }

    /// Moves the value by so many steps, as one gesture of this name. Gestures of one tag become one line of the history.
    void move(int group, int element, int steps, const std::string& gesture, std::int32_t tag);
    /// Back to the default, as a gesture.
    void reset(int group, int element, const std::string& gesture);
    /// Sets a value outside of the history.
    void set(int group, int element, double value) { change(group, element, value, 0); }

    qrb::CErrorPtr onParamInfo(qrb::CInputStream& in) override;
    qrb::CErrorPtr onParamValue(const qrb::CAudioParamUpdate& update) override;

private:
    void change(int group, int element, double value, std::int32_t gesture);
    [[nodiscard]] double moved(double value, int steps) const;
    /// Where a group or element of a parameter that has just one is found.
    [[nodiscard]] int groupOf(int group) const { return m_info.format.isSingleGroup ? 0 : group; }
    [[nodiscard]] int elementOf(int element) const { return m_info.format.isSingleElement ? 0 : element; }

    qrb::CAudioInterfaceClient& m_client;
    int m_steps;
    std::int32_t m_id = 0;
    qrb::CAudioParamInfo m_info;
    qrb::CAudioParamStorage m_values;
};

} // namespace monitor
