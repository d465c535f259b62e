// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioProcessTerminal.h"
#include "Audio/Processes/CDSPModDelayLines.h"
#include "Audio/Processes/CModDef.h"

namespace qrb {

/// Delay of a line within a declared latency: less than that latency is early, more is late, against lines that only get
/// aligned.
class CModDelayModule : public CAudioModule {
public:
    void regParams() override;
    void start() override;
    void reset() override;
    void update() override;
    void process() override;

private:
    [[nodiscard]] double delaySeconds() const;

    CAudioParamSlot m_timeSlot;
    CAudioParamSlot m_samplesSlot;
    CAudioParamSlot m_transitionSlot;
    CAudioParamSlot m_blockSizeSlot;
    CAudioParamSlot m_timeModeSlot;
    CDSPModDelayLines m_delays;
};

class CModDelay : public CAudioProcessTerminal<CModDelayModule> {};

class CModDelayDef : public CModDef<CModDelay> {
public:
    [[nodiscard]] CErrorPtr init() override;

    /// Samples that a delay reports at this sample rate.
    [[nodiscard]] int latencySamples(double sampleRate) const;

    /// Whether the delay comes on top of the latency instead of being taken from it.
    [[nodiscard]] bool isLatencyPositive() const { return m_isLatencyPositive; }

private:
    double m_latency = 0.0; ///< seconds or samples
    bool m_isLatencySeconds = false;
    bool m_isLatencyPositive = false;
};
} // namespace qrb
