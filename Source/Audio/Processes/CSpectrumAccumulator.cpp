// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/CSpectrumAccumulator.h"

#include "Audio/Processes/CSpectrumFrame.h"

#include <algorithm>
#include <cmath>

namespace qrb {

ESpectrumKind CSpectrumAccumulator::kindOf(int value)
{
    return static_cast<ESpectrumKind>(std::clamp(value, 0, static_cast<int>(ESpectrumKind::rtSigma)));
}

void CSpectrumAccumulator::start(ESpectrumKind kind, std::size_t size)
{
    const std::size_t room = CSpectrumFrame::binRoom(size);
    m_kind = kind;
    m_frameCount = 0;
    m_bins.resize(room);
    m_means.resize(kind == ESpectrumKind::rtSigma ? room : 0);
    std::fill(m_bins.begin(), m_bins.end(), 0.0);
    std::fill(m_means.begin(), m_means.end(), 0.0);
}

void CSpectrumAccumulator::add(const CSpectrumFrame& frame, std::span<CSpectrumAccumulator* const> spectra,
                               const CSpectrumRates& rates)
{
    if (spectra.empty())
        return;
    constexpr std::size_t kChunk = 256; // what is found stays near the processor until all have taken it
    double magnitudes[kChunk];
    const CSpectrumKernels& kernels = spectrumKernels();
    CSpectrumAccumulator& leader = *spectra.front();
    const std::span<CSpectrumAccumulator* const> others = spectra.subspan(1);
    for (std::size_t first = 0; first < leader.m_bins.size(); first += kChunk) {
        const std::size_t count = std::min(kChunk, leader.m_bins.size() - first);
        kernels.first[leader.place()](frame.power(), frame.terms() + 2 * first, count, rates, leader.at(first),
                                      others.empty() ? nullptr : magnitudes);
        for (CSpectrumAccumulator* const spectrum : others)
            kernels.next[spectrum->place()](magnitudes, count, rates, spectrum->at(first));
    }
    for (CSpectrumAccumulator* const spectrum : spectra)
        ++spectrum->m_frameCount;
}

void CSpectrumAccumulator::copyTo(std::span<double> out) const
{
    const bool isSum = m_kind == ESpectrumKind::average && m_frameCount > 0;
    const double factor = isSum ? 1.0 / static_cast<double>(m_frameCount) : 1.0;
    const std::size_t count = std::min(out.size(), m_bins.size());
    for (std::size_t i = 0; i < count; ++i)
        out[i] = hasSquares() ? std::sqrt(m_bins[i]) : m_bins[i] * factor;
}

} // namespace qrb
