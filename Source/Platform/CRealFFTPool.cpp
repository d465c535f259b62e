// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/CRealFFTPool.h"

#include <algorithm>

namespace qrb::platform {

namespace {

constexpr unsigned kSpinCount = 4000;

} // namespace

CRealFFTPool::CRealFFTPool() : m_lock(kSpinCount) {}

CRealFFTPool::~CRealFFTPool() = default;

const CRealFFTPlan& CRealFFTPool::plan(unsigned log2Size)
{
    const unsigned place = std::clamp(log2Size, CRealFFTPlan::kMinLog2Size, CRealFFTPlan::kMaxLog2Size);
    const CScopedLock guard(m_lock);
    std::unique_ptr<CRealFFTPlan>& plan = m_plans[place];
    if (plan == nullptr)
        plan = std::make_unique<CRealFFTPlan>(place);
    return *plan;
}

} // namespace qrb::platform
