// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/Monitor/Client/CSpectrumView.h"

#include "Audio/Viz/CAudioVizDataSpectrum.h"
#include "Audio/Viz/CVizExchange.h"
#include "Tools/Monitor/Client/CMeterBank.h"

#include <algorithm>
#include <cmath>

namespace monitor {

namespace {

constexpr double kLowest = 31.25; // Hz, middle of the first octave
/// What the window makes of a tone's power: it is spread over bins, which sum up to this much of the highest one.
constexpr double kWindowSpread = 1.5;

} // namespace

CSpectrumView::CSpectrumView(qrb::CVizExchange& exchange, const std::string& source)
    : m_exchange(exchange),
      m_handle(exchange.addListener(qrb::CString::fromUtf8("plugin.modMain." + source), *this, 0.0))
{
}

CSpectrumView::~CSpectrumView()
{
    m_exchange.removeListener(m_handle);
}

double CSpectrumView::frequency(int band, int bandsOfOctave)
{
    return kLowest * std::exp2((band + 0.5) / bandsOfOctave - 0.5);
}

double CSpectrumView::power(const CLine& line, double low, double high)
{
    const auto last = static_cast<double>(line.bins.size()) - 1.0;
    const auto place = [&](double frequency) { return std::clamp(frequency / line.binWidth, 0.0, last); };
    const auto first = static_cast<std::size_t>(std::ceil(place(low)));
    const auto end = static_cast<std::size_t>(std::ceil(place(high)));
    double sum = 0.0;
    for (std::size_t bin = first; bin < end; ++bin)
        sum += line.bins[bin] * line.bins[bin];
    if (first < end || low >= last * line.binWidth)
        return sum / kWindowSpread;
    // Narrower than a bin: the nearest one stands for it.
    const auto nearest = static_cast<std::size_t>(std::round(place(std::sqrt(low * high))));
    return line.bins[nearest] * line.bins[nearest] / kWindowSpread;
}

std::vector<double> CSpectrumView::levels(int bandsOfOctave) const
{
    std::vector<double> levels;
    if (m_lines.empty())
        return levels;
    for (int band = 0; band < kOctaves * bandsOfOctave; ++band) {
        const double middle = frequency(band, bandsOfOctave);
        const double half = std::exp2(0.5 / bandsOfOctave);
        double loudest = 0.0;
        for (const auto& entry : m_lines)
            loudest = std::max(loudest, power(entry.second, middle / half, middle * half));
        levels.push_back(toDecibels(std::sqrt(loudest)));
    }
    return levels;
}

void CSpectrumView::onVizIdle(const qrb::CVizListenerEntry&)
{
    m_lines.clear();
}

void CSpectrumView::onVizData(const qrb::CVizListenerEntry&, const qrb::CAudioVizData& data)
{
    const auto* const spectrum = dynamic_cast<const qrb::CAudioVizDataSpectrum*>(&data);
    if (spectrum == nullptr || spectrum->bins.empty() || spectrum->blockSize < 1 || !(spectrum->sampleRate > 0.0))
        return;
    m_lines[{data.group, data.channel}] = {spectrum->bins, spectrum->sampleRate / spectrum->blockSize};
}

} // namespace monitor
