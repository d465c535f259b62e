// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/CRealFFTPlan.h"

#include "Platform/FFTWisdom.h"

#include <algorithm>
#include <fftw3.h>
#include <memory>
#include <mutex>

namespace qrb::platform {

namespace {

/// The planner has state of its own and is not made for threads; running plans is.
constinit std::mutex g_plannerMutex;
constinit std::size_t g_planCount = 0;

struct CRelease {
    void operator()(double* block) const { fftw_free(block); }
};

fftw_complex* complexTerms(double* terms)
{
    return reinterpret_cast<fftw_complex*>(terms);
}

} // namespace

CRealFFTPlan::CRealFFTPlan(unsigned log2Size)
    : m_size(std::size_t{1} << std::clamp(log2Size, kMinLog2Size, kMaxLog2Size))
{
    const std::lock_guard guard(g_plannerMutex);
    const std::unique_ptr<double, CRelease> samples(fftw_alloc_real(m_size));
    const std::unique_ptr<double, CRelease> terms(fftw_alloc_real(m_size + 2));
    const int length = static_cast<int>(m_size);
    // Nothing is measured here, so each run of the program makes the same plans and computes the same bits.
    if (g_planCount++ == 0)
        fftw_import_wisdom_from_string(fftWisdom());
    m_forward = fftw_plan_dft_r2c_1d(length, samples.get(), complexTerms(terms.get()), FFTW_ESTIMATE);
    m_inverse = fftw_plan_dft_c2r_1d(length, complexTerms(terms.get()), samples.get(), FFTW_ESTIMATE);
}

CRealFFTPlan::~CRealFFTPlan()
{
    const std::lock_guard guard(g_plannerMutex);
    fftw_destroy_plan(m_forward);
    fftw_destroy_plan(m_inverse);
    if (--g_planCount == 0)
        fftw_cleanup(); // what the planner knows goes with the last plan: the module may be unloaded next
}

void CRealFFTPlan::forward(const double* samples, double* terms) const
{
    // The library takes the samples as writable, yet this kind of plan leaves them as they are.
    fftw_execute_dft_r2c(m_forward, const_cast<double*>(samples), complexTerms(terms));
}

void CRealFFTPlan::inverse(double* terms, double* samples) const
{
    fftw_execute_dft_c2r(m_inverse, complexTerms(terms), samples);
}

} // namespace qrb::platform
