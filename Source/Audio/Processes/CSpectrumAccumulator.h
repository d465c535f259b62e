// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CArray.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace qrb {

/// How the frames of a spectrum are joined. The numbers are parameter states and part of the message format.
enum class ESpectrumKind : std::int32_t { rtAverage, max, average, rtMax, rtSigma };

/// Shares of a new frame in the smoothers of a spectrum.
struct CSpectrumRates {
    double value = 1.0;
    double variance = 1.0; ///< twice as fast as `value`
};

/// The spectrum that the frames so far make.
class CSpectrumAccumulator {
public:
    /// The kind of a parameter's value.
    [[nodiscard]] static ESpectrumKind kindOf(int value);

    /// Starts anew. Memory is taken only for more bins than ever before.
    void start(ESpectrumKind kind, std::size_t binCount);
    void add(std::span<const double> magnitudes, const CSpectrumRates& rates);
    /// Whether copyTo() has something: means need a frame.
    [[nodiscard]] bool hasResult() const { return m_kind != ESpectrumKind::average || m_frameCount > 0; }
    /// The bins as they are shown; as many as `out` has.
    void copyTo(std::span<double> out) const;
    [[nodiscard]] ESpectrumKind kind() const { return m_kind; }

private:
    ESpectrumKind m_kind = ESpectrumKind::rtAverage;
    CArray<double, 0> m_bins;
    CArray<double, 0> m_means; ///< of rtSigma only
    std::int64_t m_frameCount = 0;
};

} // namespace qrb
