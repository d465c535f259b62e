// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>

namespace qrb {

class CSampleBuffer;
class CSampleBufferPool;

/// Soft silence: noise of +1e-11 or -1e-11 a sample, about -220 dB, that keeps recursive filters behind it from decaying
/// into denormal numbers.
///
/// The generator is an integer recursion, so the noise is the same however a stream is cut into blocks.
class CDenormNoise {
public:
    explicit CDenormNoise(std::uint32_t seed = 0) : m_state(seed) {}

    /// A seed no earlier generator of this process had (until the counter wraps). Thread: any.
    [[nodiscard]] static std::uint32_t takeSeed();

    /// Fills `out` with noise.
    void fill(std::span<double> out);

    /// The same as a fresh buffer of `length` samples.
    [[nodiscard]] CSampleBuffer makeBuffer(CSampleBufferPool& pool, int length);

    /// `out` = `in` plus noise; equally long, may be the same.
    void add(std::span<const double> in, std::span<double> out);

private:
    template <class Store>
    void run(std::size_t count, Store store);

    std::uint32_t m_state;
};

} // namespace qrb
