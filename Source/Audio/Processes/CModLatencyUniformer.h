// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioProcessTerminal.h"
#include "Audio/Processes/CDSPModDelayLines.h"
#include "Audio/Processes/CModDef.h"

namespace qrb {

/// Makes the latency one fixed number for each sample rate, whatever the nodes in front of it take.
class CModLatencyUniformerModule : public CAudioModule {
public:
    void start() override;
    void reset() override;
    void update() override;
    void process() override;

private:
    [[nodiscard]] int missingLatency() const;

    CDSPModDelayLines m_delays;
};

class CModLatencyUniformer : public CAudioProcessTerminal<CModLatencyUniformerModule> {};

class CModLatencyUniformerDef : public CModDef<CModLatencyUniformer> {
public:
    /// As a target: the rate cannot be served.
    static constexpr int kUnsupported = -1;

    [[nodiscard]] CErrorPtr init() override;

    /// Samples that the line has to have at this sample rate, or kUnsupported.
    [[nodiscard]] int targetLatency(double sampleRate) const;

private:
    struct CRow {
        int sampleRate;
        int samples;
    };

    CArray<CRow> m_rows; ///< in the order of the attribute, ascending
};
} // namespace qrb
