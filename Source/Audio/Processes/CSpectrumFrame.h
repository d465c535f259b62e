// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Processes/SpectrumKernels.h"

#include <cstddef>
#include <numbers>

namespace qrb {

namespace platform {
class CRealFFTPlan;
} // namespace platform

/// The spectrum of one frame of samples under a periodic Hann window, whose gain makes a sine of amplitude 1 that falls on
/// a bin read 0.707 there.
///
/// The samples are transformed as they are. The window is a cosine, so on the other side it joins each term with the two
/// beside it, and the loop over the bins does that while it waits for its roots.
class CSpectrumFrame {
public:
    /// Bins of a frame of `size` samples, filled up to whole steps of the kernels.
    [[nodiscard]] static constexpr std::size_t binRoom(std::size_t size) { return size / 2 + kStep; }
    /// Doubles of room for the terms.
    [[nodiscard]] static constexpr std::size_t termRoom(std::size_t size)
    {
        return size + 2 * kStep + 2 * kMargin + kAlignment;
    }

    /// Transforms the plan's number of samples. `room` has termRoom() doubles and stays the caller's; it and the samples
    /// are aligned as the plan asks. False for samples that are no numbers; nothing of use is found then.
    [[nodiscard]] bool transform(const platform::CRealFFTPlan& plan, const double* samples, double* room);

    /// [re, im, re, im, ...] of binRoom() bins without the window, with one more in front and behind.
    [[nodiscard]] const double* terms() const { return m_terms; }
    /// Of the bins that CSpectrumKernels finds in the terms of a frame of `size` samples: sqrt(8) / size of the window, and
    /// a quarter since the kernels take 2 t[k] - t[k - 1] - t[k + 1] for (t[k] - (t[k - 1] + t[k + 1]) / 2) / 2.
    [[nodiscard]] static constexpr double binGain(std::size_t size)
    {
        return 0.5 * std::numbers::sqrt2 / static_cast<double>(size);
    }

private:
    static constexpr std::size_t kStep = CSpectrumKernels::kBinStep;
    static constexpr std::size_t kMargin = 2;    ///< doubles of a neighbour
    static constexpr std::size_t kAlignment = 8; ///< in doubles, of the terms: the transform is faster then

    const double* m_terms = nullptr;
};

} // namespace qrb
