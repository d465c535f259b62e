// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Viz/CVizListener.h"
#include "Core/CArray.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace qrb {
class CAudioVizDataSpectrum;
class CVizExchange;
} // namespace qrb

namespace monitor {

/// A spectrum in a few bands. Lives no longer than the exchange.
class CSpectrumView : public qrb::CVizListener {
public:
    static constexpr int kOctaves = 10;

    /// `source`: below plugin.modMain.
    CSpectrumView(qrb::CVizExchange& exchange, const std::string& source);
    ~CSpectrumView() override;
    CSpectrumView(const CSpectrumView&) = delete;
    CSpectrumView& operator=(const CSpectrumView&) = delete;

    /// Level of each band in dB, of the loudest channel; empty while nothing comes. A sine reads its RMS value, as on a
    /// meter. The bands are parts of the octaves around 31.25 Hz to 16 kHz.
    [[nodiscard]] std::vector<double> levels(int bandsOfOctave) const;
    /// Middle of a band in Hz.
    [[nodiscard]] static double frequency(int band, int bandsOfOctave);

    void onVizIdle(const qrb::CVizListenerEntry& entry) override;
    void onVizData(const qrb::CVizListenerEntry& entry, const qrb::CAudioVizData& data) override;

private:
    struct CLine {
        qrb::CArray<double, 0> bins;
        double binWidth = 0.0; ///< Hz
    };

    [[nodiscard]] static double power(const CLine& line, double low, double high);

    qrb::CVizExchange& m_exchange;
    std::int32_t m_handle;
    std::map<std::pair<int, int>, CLine> m_lines; ///< by group and channel
};

} // namespace monitor
