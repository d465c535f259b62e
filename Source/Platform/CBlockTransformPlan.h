// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <new>

namespace qrb::platform {

/// Factors of the transform that a convolution in blocks of B = 2^log2Block samples multiplies.
///
/// A block and the one behind it, x, are the complex polynomial of degree B - 1 with the terms x[n] + i * x[n + B], whose
/// values at the B roots of t^B = i are the spectrum. Their products are the polynomial that stands for the samples'
/// convolution, wrapped around after 2 * B of them with the sign turned: what an overlap-save convolution throws away.
/// No value is real by nature, none occurs twice, and nobody minds their order.
///
/// The way there splits remainders modulo t^4m - r into those modulo t^m - s for the four s with s^4 = r, until single
/// values are left. All of it is done in the same order on every processor, so the last bit is the same too.
///
/// Immutable. Thread: any.
class CBlockTransformPlan {
public:
    static constexpr unsigned kMinLog2Block = 4;
    static constexpr unsigned kMaxLog2Block = 14;
    /// Samples of a block that the last two splits take in one go.
    static constexpr std::size_t kLeaf = 16;
    /// Doubles of a split: s, s^2, s^3 of the first s.
    static constexpr std::size_t kSplitFactors = 6;
    /// Doubles of a leaf: the factors of a split, two unused, then for each of the four parts s, then s^2, s^3; the real
    /// parts of four before the imaginary ones.
    static constexpr std::size_t kLeafFactors = 32;

    /// `log2Block` is brought into the limits above.
    explicit CBlockTransformPlan(unsigned log2Block);

    [[nodiscard]] std::size_t block() const { return m_block; }
    /// Whether the first split is in two: s, or null.
    [[nodiscard]] const double* halving() const { return m_isHalved ? m_halving.data() : nullptr; }
    /// Splits into four between that and the leaves.
    [[nodiscard]] std::size_t passCount() const { return m_passCount; }
    /// Factors of the parts of a pass, in their order.
    [[nodiscard]] const double* pass(std::size_t index) const { return m_factors.get() + m_passStarts[index]; }
    [[nodiscard]] const double* leaves() const { return m_factors.get() + m_leafStart; }

private:
    static constexpr std::align_val_t kAlignment{64};
    struct CRelease {
        void operator()(double* block) const { ::operator delete[](block, kAlignment); }
    };

    std::size_t m_block;
    bool m_isHalved;
    std::array<double, 2> m_halving{};
    std::size_t m_passCount = 0;
    std::array<std::size_t, kMaxLog2Block / 2> m_passStarts{};
    std::size_t m_leafStart = 0;
    std::unique_ptr<double[], CRelease> m_factors;
};

} // namespace qrb::platform
