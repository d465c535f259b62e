// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Processes/SpectrumKernels.h"
#include "Core/CArray.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace qrb {

class CSpectrumFrame;

/// The spectrum that the frames so far make.
class CSpectrumAccumulator {
public:
    /// The kind of a parameter's value.
    [[nodiscard]] static ESpectrumKind kindOf(int value);

    /// Starts anew, for frames of `size` samples. Memory is taken only for more bins than ever before.
    void start(ESpectrumKind kind, std::size_t size);
    /// Takes a frame into one spectrum or several, all started for its size.
    static void add(const CSpectrumFrame& frame, std::span<CSpectrumAccumulator* const> spectra,
                    const CSpectrumRates& rates);
    /// Whether copyTo() has something: means need a frame.
    [[nodiscard]] bool hasResult() const { return m_kind != ESpectrumKind::average || m_frameCount > 0; }
    /// Frames with samples far beyond any signal leave bins that are none, for ever: it has to be started again.
    [[nodiscard]] bool isDamaged() const;
    /// The bins as they are shown; as many as `out` has.
    void copyTo(std::span<double> out) const;
    [[nodiscard]] ESpectrumKind kind() const { return m_kind; }

private:
    [[nodiscard]] std::size_t place() const { return static_cast<std::size_t>(m_kind); }
    [[nodiscard]] CSpectrumBins at(std::size_t first) { return {m_bins.data() + first, m_means.data() + first}; }
    [[nodiscard]] bool hasSquares() const { return m_kind == ESpectrumKind::max || m_kind == ESpectrumKind::rtSigma; }

    ESpectrumKind m_kind = ESpectrumKind::rtAverage;
    CArray<double, 0> m_bins;  ///< filled up to whole steps of the kernels
    CArray<double, 0> m_means; ///< of rtSigma only
    double m_gain = 1.0;
    std::int64_t m_frameCount = 0;
};

} // namespace qrb
