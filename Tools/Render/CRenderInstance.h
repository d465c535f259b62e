// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioWrapper.h"
#include "Tools/Render/CHostOptions.h"

#include <string>
#include <vector>

namespace qrb {
class CAudioParam;
}

namespace render {

/// A plug-in instance whose events address parameters by what the command line named.
class CRenderInstance : public qrb::CAudioWrapper {
public:
    /// What an event of the index of this record sets.
    struct CTarget {
        qrb::CAudioParam* param = nullptr;
        int group = 0;
        int element = 0;
        double value = 0.0; ///< stored form
    };

    bool onExtParamEvent(const qrb::CExternalEvent& event) override;

    /// Looks a setting's parameter up and reads its text. False with one line in `error`.
    [[nodiscard]] bool resolve(const CSetting& setting, CTarget& out, std::string& error);
    /// Sets a value now, before the instance starts. False with one line in `error`.
    [[nodiscard]] bool apply(const CSetting& setting, std::string& error);
    /// Makes a target known and gives the index by which events name it. Only before the instance starts.
    [[nodiscard]] int addTarget(const CTarget& target);

    /// Routes as many channels straight through as there are, where the command line leaves the routing alone.
    void routeChannels(int channelCount, const std::vector<CSetting>& settings);

    /// What can be told of a parameter, as a user reads it.
    struct CParamText {
        std::string path; ///< below plugin.modMain
        int groups = 0;
        int elements = 0;
        std::string values; ///< of group 0, joined by commas
        std::string min;    ///< empty for texts
        std::string max;
        std::string defaults;
        std::string unit;
    };
    /// All parameters in the order of their paths.
    [[nodiscard]] std::vector<CParamText> listParams();

private:
    qrb::CAudioParam* findParam(const CSetting& setting, std::string& error);

    std::vector<CTarget> m_targets;
};

} // namespace render
