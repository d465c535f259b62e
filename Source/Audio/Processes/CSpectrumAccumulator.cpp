// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/CSpectrumAccumulator.h"

#include <algorithm>
#include <cmath>

namespace qrb {

namespace {

void addAverage(double* bins, const double* magnitudes, std::size_t count, double rate)
{
    for (std::size_t i = 0; i < count; ++i)
        bins[i] += (magnitudes[i] - bins[i]) * rate;
}

void addMax(double* bins, const double* magnitudes, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i)
        bins[i] = bins[i] > magnitudes[i] ? bins[i] : magnitudes[i];
}

void addSum(double* bins, const double* magnitudes, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i)
        bins[i] += magnitudes[i];
}

void addFallingMax(double* bins, const double* magnitudes, std::size_t count, double rate)
{
    for (std::size_t i = 0; i < count; ++i) {
        const double fallen = bins[i] + (magnitudes[i] - bins[i]) * rate;
        bins[i] = magnitudes[i] > bins[i] ? magnitudes[i] : fallen;
    }
}

void addSigma(double* bins, double* means, const double* magnitudes, std::size_t count, const CSpectrumRates& rates)
{
    for (std::size_t i = 0; i < count; ++i) {
        means[i] += (magnitudes[i] - means[i]) * rates.value;
        const double distance = means[i] - magnitudes[i];
        const double variance = bins[i] * bins[i];
        bins[i] = std::sqrt(std::abs(variance + (distance * distance - variance) * rates.variance));
    }
}

} // namespace

ESpectrumKind CSpectrumAccumulator::kindOf(int value)
{
    return static_cast<ESpectrumKind>(std::clamp(value, 0, static_cast<int>(ESpectrumKind::rtSigma)));
}

void CSpectrumAccumulator::start(ESpectrumKind kind, std::size_t binCount)
{
    m_kind = kind;
    m_frameCount = 0;
    m_bins.resize(binCount);
    m_means.resize(kind == ESpectrumKind::rtSigma ? binCount : 0);
    std::fill(m_bins.begin(), m_bins.end(), 0.0);
    std::fill(m_means.begin(), m_means.end(), 0.0);
}

void CSpectrumAccumulator::add(std::span<const double> magnitudes, const CSpectrumRates& rates)
{
    const double* const from = magnitudes.data();
    const std::size_t count = std::min(magnitudes.size(), m_bins.size());
    ++m_frameCount;
    switch (m_kind) {
    case ESpectrumKind::rtAverage:
        return addAverage(m_bins.data(), from, count, rates.value);
    case ESpectrumKind::max:
        return addMax(m_bins.data(), from, count);
    case ESpectrumKind::average:
        return addSum(m_bins.data(), from, count);
    case ESpectrumKind::rtMax:
        return addFallingMax(m_bins.data(), from, count, rates.value);
    case ESpectrumKind::rtSigma:
        return addSigma(m_bins.data(), m_means.data(), from, count, rates);
    }
}

void CSpectrumAccumulator::copyTo(std::span<double> out) const
{
    const bool isSum = m_kind == ESpectrumKind::average && m_frameCount > 0;
    const double factor = isSum ? 1.0 / static_cast<double>(m_frameCount) : 1.0;
    const std::size_t count = std::min(out.size(), m_bins.size());
    for (std::size_t i = 0; i < count; ++i)
        out[i] = m_bins[i] * factor;
}

} // namespace qrb
