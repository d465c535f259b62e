// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <memory>

namespace qrb::platform {

/// Fourier transform of real signals, N = 2^log2Size doubles, without normalisation in either direction: forward and
/// inverse one after the other multiply by N.
///
/// The spectrum is packed into N doubles. The two terms that are real stand first:
///     [DC, Nyquist, re 1, im 1, re 2, im 2, ..., re N/2-1, im N/2-1]
/// with X[k] = sum over n of x[n] * e^(-2 pi i k n / N).
///
/// An object has its own work buffer, so one thread at a time may use it. Making and destroying one is safe from any
/// thread and waits for others that do the same: not for the audio thread. The same input gives the same output, bit
/// for bit, wherever the caller's buffers lie.
class CRealFFT {
public:
    static constexpr unsigned kMinLog2Size = 1;
    static constexpr unsigned kMaxLog2Size = 16;

    /// `log2Size` is brought into the limits above.
    explicit CRealFFT(unsigned log2Size);
    ~CRealFFT();

    CRealFFT(const CRealFFT&) = delete;
    CRealFFT& operator=(const CRealFFT&) = delete;

    [[nodiscard]] std::size_t size() const { return m_size; }

    /// `size()` samples to `size()` packed spectrum values; both may be the same buffer. Allocates nothing.
    void forward(const double* samples, double* packed);
    /// The way back, times `size()`. Both may be the same buffer. Allocates nothing.
    void inverse(const double* packed, double* samples);

private:
    struct CWork;
    std::unique_ptr<CWork> m_work;
    std::size_t m_size;
};

} // namespace qrb::platform
