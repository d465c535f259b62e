// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>

struct fftw_plan_s;

namespace qrb::platform {

/// How to transform real signals of one length, N = 2^log2Size doubles, without normalisation in either direction. The
/// spectrum is N / 2 + 1 complex terms [re 0, im 0, re 1, im 1, ...]; im 0 and im N/2 are 0.
///
/// A plan holds no data of a transform, so any number of threads may use it at once. Making and destroying one is safe
/// from any thread and waits for others that do the same.
class CRealFFTPlan {
public:
    static constexpr unsigned kMinLog2Size = 1;
    static constexpr unsigned kMaxLog2Size = 16;
    /// Of every buffer handed in, in bytes.
    static constexpr std::size_t kAlignment = 16;

    /// `log2Size` is brought into the limits above.
    explicit CRealFFTPlan(unsigned log2Size);
    ~CRealFFTPlan();

    CRealFFTPlan(const CRealFFTPlan&) = delete;
    CRealFFTPlan& operator=(const CRealFFTPlan&) = delete;

    [[nodiscard]] std::size_t size() const { return m_size; }

    /// `size()` samples to `size()` + 2 doubles of spectrum, two buffers. Allocates nothing. Thread: any.
    void forward(const double* samples, double* terms) const;
    /// The way back, times `size()`; the spectrum is lost. Allocates nothing. Thread: any.
    void inverse(double* terms, double* samples) const;

private:
    std::size_t m_size;
    fftw_plan_s* m_forward = nullptr;
    fftw_plan_s* m_inverse = nullptr;
};

} // namespace qrb::platform
