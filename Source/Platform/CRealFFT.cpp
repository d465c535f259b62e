// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/CRealFFT.h"

#include <algorithm>
#include <cstring>
#include <fftw3.h>
#include <mutex>

namespace qrb::platform {

namespace {

/// The library's planner has state of its own and is not made for threads; running plans is.
std::mutex& plannerMutex()
{
    static std::mutex mutex;
    return mutex;
}

} // namespace

/// Plans that work in place on one aligned buffer of N / 2 + 1 complex terms. Copying in and out is small beside the
/// transform, and it makes the result independent of how the caller's buffers are aligned.
struct CRealFFT::CPlans {
    explicit CPlans(std::size_t size)
    {
        const std::lock_guard guard(plannerMutex());
        work = fftw_alloc_real(size + 2);
        std::fill_n(work, size + 2, 0.0);
        auto* terms = reinterpret_cast<fftw_complex*>(work);
        const int length = static_cast<int>(size);
        // Estimated plans depend on nothing measured, so each run of the program computes the same bits.
        forward = fftw_plan_dft_r2c_1d(length, work, terms, FFTW_ESTIMATE);
        inverse = fftw_plan_dft_c2r_1d(length, terms, work, FFTW_ESTIMATE);
    }

    ~CPlans()
    {
        const std::lock_guard guard(plannerMutex());
        fftw_destroy_plan(forward);
        fftw_destroy_plan(inverse);
        fftw_free(work);
    }

    CPlans(const CPlans&) = delete;
    CPlans& operator=(const CPlans&) = delete;

    double* work = nullptr;
    fftw_plan forward = nullptr;
    fftw_plan inverse = nullptr;
};

CRealFFT::CRealFFT(unsigned log2Size)
    : m_size(std::size_t{1} << std::clamp(log2Size, kMinLog2Size, kMaxLog2Size)),
      m_plans(std::make_unique<CPlans>(m_size))
{
}

CRealFFT::~CRealFFT() = default;

void CRealFFT::forward(const double* samples, double* packed)
{
    double* work = m_plans->work;
    std::memcpy(work, samples, m_size * sizeof(double));
    fftw_execute(m_plans->forward);
    // DC and Nyquist have no imaginary part; they share the first place.
    packed[0] = work[0];
    packed[1] = work[m_size];
    std::memcpy(packed + 2, work + 2, (m_size - 2) * sizeof(double));
}

void CRealFFT::inverse(const double* packed, double* samples)
{
    double* work = m_plans->work;
    work[0] = packed[0];
    work[1] = 0.0;
    std::memcpy(work + 2, packed + 2, (m_size - 2) * sizeof(double));
    work[m_size] = packed[1];
    work[m_size + 1] = 0.0;
    fftw_execute(m_plans->inverse);
    std::memcpy(samples, work, m_size * sizeof(double));
}

} // namespace qrb::platform
