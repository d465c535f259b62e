// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/CRealFFT.h"

#include "Platform/CRealFFTPlan.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace qrb::platform {

namespace {

constexpr std::align_val_t kAlignment{64};

struct CRelease {
    void operator()(double* block) const { ::operator delete[](block, kAlignment); }
};

using CBuffer = std::unique_ptr<double[], CRelease>;

CBuffer makeBuffer(std::size_t count)
{
    CBuffer buffer(new (kAlignment) double[count]);
    std::fill_n(buffer.get(), count, 0.0);
    return buffer;
}

} // namespace

/// Copying in and out is small beside the transform, and it makes the result independent of how the caller's buffers
/// are aligned.
struct CRealFFT::CWork {
    explicit CWork(unsigned log2Size)
        : plan(log2Size), samples(makeBuffer(plan.size())), terms(makeBuffer(plan.size() + 2))
    {
    }

    CRealFFTPlan plan;
    CBuffer samples;
    CBuffer terms;
};

CRealFFT::CRealFFT(unsigned log2Size) : m_work(std::make_unique<CWork>(log2Size)), m_size(m_work->plan.size()) {}

CRealFFT::~CRealFFT() = default;

void CRealFFT::forward(const double* samples, double* packed)
{
    const double* terms = m_work->terms.get();
    std::memcpy(m_work->samples.get(), samples, m_size * sizeof(double));
    m_work->plan.forward(m_work->samples.get(), m_work->terms.get());
    // DC and Nyquist have no imaginary part; they share the first place.
    packed[0] = terms[0];
    packed[1] = terms[m_size];
    std::memcpy(packed + 2, terms + 2, (m_size - 2) * sizeof(double));
}

void CRealFFT::inverse(const double* packed, double* samples)
{
    double* terms = m_work->terms.get();
    terms[0] = packed[0];
    terms[1] = 0.0;
    std::memcpy(terms + 2, packed + 2, (m_size - 2) * sizeof(double));
    terms[m_size] = packed[1];
    terms[m_size + 1] = 0.0;
    m_work->plan.inverse(terms, m_work->samples.get());
    std::memcpy(samples, m_work->samples.get(), m_size * sizeof(double));
}

} // namespace qrb::platform
