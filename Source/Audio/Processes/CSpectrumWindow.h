// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>

namespace qrb {

/// Periodic Hann window whose gain makes a sine of amplitude 1 that falls on a bin read 0.707 there. It is worked out
/// anew for each frame, by a recursion without a table or a cosine for each sample.
class CSpectrumWindow {
public:
    /// `size`: a power of two from 64 on.
    void setSize(std::size_t size);
    [[nodiscard]] std::size_t size() const { return m_size; }
    /// Multiplies `size` samples by the window.
    void apply(double* frame) const;

private:
    /// So many values are carried along side by side, each stepping over the others.
    static constexpr std::size_t kLanes = 8;

    std::size_t m_size = 0;
    double m_scale = 0.0;
    double m_curve = 0.0;                     ///< how much a lane's step bends from one to the next
    std::array<double, kLanes> m_first{};     ///< the cosine part at the window's first values
    std::array<double, kLanes> m_firstStep{}; ///< from there to the next value of the lane
};

} // namespace qrb
