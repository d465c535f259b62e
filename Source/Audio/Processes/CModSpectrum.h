// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioProcessTerminal.h"
#include "Audio/Processes/CModDef.h"
#include "Audio/Processes/CSpectrumAccumulator.h"
#include "Audio/Viz/CAudioVizWriter.h"

namespace qrb {

namespace platform {
class CRealFFTPlan;
} // namespace platform

/// Spectrum of a line, and a second one that joins the same frames in another way. The signal passes through unchanged.
/// While nobody listens nothing else is done, and it starts anew with the first listener.
class CModSpectrumModule : public CAudioModule {
public:
    void regParams() override;
    void start() override;
    void reset() override;
    void update() override;
    void process() override;

private:
    /// One of the two.
    struct CSpectrum {
        CAudioVizWriter writer;
        CSpectrumAccumulator bins;
    };

    void setFrameSize();
    void clearSpectra();
    void collect(const double* samples, std::size_t count);
    [[nodiscard]] bool findFrame();
    void runFrame(double time);
    [[nodiscard]] double viewRate() const;
    void post(CSpectrum& spectrum, double time);
    [[nodiscard]] double streamTime() const;
    [[nodiscard]] bool isActive() const { return m_main.writer.isActive() || m_second.writer.isActive(); }

    CAudioParamSlot m_blockSize;
    CAudioParamSlot m_overlap;
    CAudioParamSlot m_averageTime;
    CAudioParamSlot m_type;
    CAudioParamSlot m_resetSlot;
    CAudioParamSlot m_secondType;
    CAudioParamSlot m_secondEnable;

    CSpectrum m_main;
    CSpectrum m_second;
    const platform::CRealFFTPlan* m_plan = nullptr; ///< the process's
    CSpectrumRates m_rates;
    std::size_t m_size = 0;      ///< samples of a frame
    CArray<double, 0> m_samples; ///< room for two frames, so that a frame seldom needs to be moved
    std::size_t m_end = 0;       ///< of the latest samples in there, at least a frame
    std::size_t m_hop = 1;
    std::size_t m_untilFrame = 1;
    double m_average = 0.0; ///< seconds
    bool m_hasSecond = false;
    bool m_isRunning = false;
    bool m_hasPosted = false;
    double m_postTime = 0.0;
    double m_resetTime = 0.0;
};

class CModSpectrum : public CAudioProcessTerminal<CModSpectrumModule> {};

class CModSpectrumDef : public CModDef<CModSpectrum> {};
} // namespace qrb
