// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioProcessTerminal.h"
#include "Audio/Processes/CModDef.h"
#include "Audio/Processes/CModStatsModule.h"
#include "Audio/Processes/CPeakHold.h"
#include "Audio/Processes/MeterKernels.h"

namespace qrb {

/// Meter of a line's level, of a gain, or of the ratio of two lines.
class CModMeterModule : public CModStatsModule {
public:
    void regParams() override;
    void start() override;
    void reset() override;
    void update() override;

protected:
    void measure(const double* a, const double* b, int count) override { m_kernel(m_rates, m_levels, a, b, count); }
    [[nodiscard]] std::unique_ptr<CAudioVizData> makeRecord(CAudioVizWriter& writer) override;
    void clearStats() override;

private:
    void chooseKernel();
    [[nodiscard]] double rateOf(double seconds) const;
    /// Peaks of gains and of ratios are minima.
    [[nodiscard]] bool isOfMinima() const { return m_isDiff || m_isCompression; }
    [[nodiscard]] bool hasPeaks() const { return m_kernel != measureRatio; }

    CAudioParamSlot m_peakTime;
    CAudioParamSlot m_rmsTime;
    CAudioParamSlot m_gainSlot;
    CAudioParamSlot m_biasTime;
    CAudioParamSlot m_useBias;
    CAudioParamSlot m_release;
    CAudioParamSlot m_peakGainSlot;
    CAudioParamSlot m_rmsTime2;
    CAudioParamSlot m_release2;
    CAudioParamSlot m_useTime2;

    bool m_isDiff = false;
    bool m_isCompression = false;
    bool m_isInverted = false;
    double m_fps = kEditorRate;
    double m_gain = 1.0;
    double m_peakGain = 1.0;
    FMeterKernel m_kernel = measureLevel;
    CMeterRates m_rates;
    CMeterLevels m_levels;
    CPeakHold m_hold;
};

class CModMeter : public CAudioProcessTerminal<CModMeterModule> {};

class CModMeterDef : public CModDef<CModMeter> {
public:
    [[nodiscard]] CErrorPtr init() override;

    /// Records a second; 0 for as many as the editor asks for.
    [[nodiscard]] double fps() const { return m_fps; }
    [[nodiscard]] bool isDiff() const { return m_isDiff; }
    [[nodiscard]] bool isCompression() const { return m_isCompression; }
    [[nodiscard]] bool isInverted() const { return m_isInverted; }

private:
    double m_fps = 0.0;
    bool m_isDiff = false;
    bool m_isCompression = false;
    bool m_isInverted = false;
};
} // namespace qrb
