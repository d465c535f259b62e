// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Viz/CVizListener.h"

#include <map>
#include <string>
#include <tuple>

namespace qrb {
class CVizExchange;
}

namespace monitor {

/// Factor as dB; what is below -120 reads so.
[[nodiscard]] double toDecibels(double factor);

/// What the meters of one place in the signal's way show. Lives no longer than the exchange.
class CMeterBank : public qrb::CVizListener {
public:
    /// Which of the lines through that place.
    struct CLine {
        int group = 0;
        int channel = 0;
        int band = 0;
        bool operator<(const CLine& other) const
        {
            return std::tie(group, channel, band) < std::tie(other.group, other.channel, other.band);
        }
    };
    /// Linear factors.
    struct CLevel {
        double value = 0.0;
        double peak = 0.0; ///< held for as long as the meter does; the deepest of a gain
    };

    /// `source`: below plugin.modMain.
    CMeterBank(qrb::CVizExchange& exchange, const std::string& source);
    ~CMeterBank() override;
    CMeterBank(const CMeterBank&) = delete;
    CMeterBank& operator=(const CMeterBank&) = delete;

    /// The lines of which something has come lately; none while the place is out of the signal's way.
    [[nodiscard]] const std::map<CLine, CLevel>& levels() const { return m_levels; }

    void onVizIdle(const qrb::CVizListenerEntry& entry) override;
    void onVizData(const qrb::CVizListenerEntry& entry, const qrb::CAudioVizData& data) override;

private:
    qrb::CVizExchange& m_exchange;
    std::int32_t m_handle;
    std::map<CLine, CLevel> m_levels;
};

} // namespace monitor
