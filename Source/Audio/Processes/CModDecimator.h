// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Processes/CDSPModDelay.h"
#include "Audio/Processes/CModDef.h"

#include <memory>

namespace qrb {

/// Halves the sample rate by dropping every second sample; a filter in front of it has taken away what would alias.
/// Blocks have an even length. Lines of an odd latency get a sample more, so that it is whole behind the node too.
class CModDecimator : public CAudioProcessBase {
public:
    CModDecimator() { input().setThinning(true); }

    void reset() override;
    void update() override;

protected:
    void processLines() override;
    [[nodiscard]] bool takesForm(ESampleForm form) const override;

private:
    /// What makes the latency of a line even.
    struct CEvener {
        int port;
        int channel;
        std::unique_ptr<CDSPModDelay> delay;
    };

    void updateEveners(bool areNeeded);
    [[nodiscard]] std::unique_ptr<CDSPModDelay> takeDelay(CArray<CEvener, 2>& from, int port, int channel);

    CArray<CAudioLineInfo, 4> m_announced;
    CArray<CEvener, 2> m_eveners; ///< in the order of the lines; empty where the latency is even
};

class CModDecimatorDef : public CModDef<CModDecimator> {};

} // namespace qrb
