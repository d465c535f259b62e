// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/CSpectrumAccumulator.h"

#include "Audio/Processes/CSpectrumFrame.h"

#include <algorithm>

namespace qrb {

namespace {

/// Bins that are worked on at a time, so that they stay near the processor until all have taken them.
constexpr std::size_t kChunk = 256;

} // namespace

ESpectrumKind CSpectrumAccumulator::kindOf(int value)
{
    return static_cast<ESpectrumKind>(std::clamp(value, 0, static_cast<int>(ESpectrumKind::rtSigma)));
}

void CSpectrumAccumulator::start(ESpectrumKind kind, std::size_t size)
{
    const std::size_t room = CSpectrumFrame::binRoom(size);
    m_kind = kind;
    m_frameCount = 0;
    m_gain = CSpectrumFrame::binGain(size);
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
    double magnitudes[kChunk];
    const CSpectrumKernels& kernels = spectrumKernels();
    CSpectrumAccumulator& leader = *spectra.front();
    const std::span<CSpectrumAccumulator* const> others = spectra.subspan(1);
    for (std::size_t first = 0; first < leader.m_bins.size(); first += kChunk) {
        const std::size_t count = std::min(kChunk, leader.m_bins.size() - first);
        kernels.first[leader.place()](frame.terms() + 2 * first, count, rates, leader.at(first),
                                      others.empty() ? nullptr : magnitudes);
        for (CSpectrumAccumulator* const spectrum : others)
            kernels.next[spectrum->place()](magnitudes, count, rates, spectrum->at(first));
    }
    for (CSpectrumAccumulator* const spectrum : spectra)
        ++spectrum->m_frameCount;
}

bool CSpectrumAccumulator::isDamaged() const
{
    return !spectrumKernels().areFinite(m_bins.data(), m_bins.size());
}

void CSpectrumAccumulator::copyTo(std::span<double> out) const
{
    const CSpectrumKernels& kernels = spectrumKernels();
    const auto read = hasSquares() ? kernels.readRoots : kernels.read;
    const bool isSum = m_kind == ESpectrumKind::average && m_frameCount > 0;
    const double gain = isSum ? m_gain / static_cast<double>(m_frameCount) : m_gain;
    double bins[kChunk];
    for (std::size_t first = 0; first < std::min(out.size(), m_bins.size()); first += kChunk) {
        read(m_bins.data() + first, std::min(kChunk, m_bins.size() - first), gain, bins);
        std::copy_n(bins, std::min(kChunk, out.size() - first), out.data() + first);
    }
}

} // namespace qrb
