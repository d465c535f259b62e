// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/CBlockTransformPool.h"

#include <algorithm>

namespace qrb::platform {

namespace {

constexpr unsigned kSpinCount = 4000;

} // namespace

CBlockTransformPool::CBlockTransformPool() : m_lock(kSpinCount) {}

CBlockTransformPool::~CBlockTransformPool() = default;

const CBlockTransformPlan& CBlockTransformPool::plan(unsigned log2Block)
{
    const unsigned place =
        std::clamp(log2Block, CBlockTransformPlan::kMinLog2Block, CBlockTransformPlan::kMaxLog2Block);
    const CScopedLock guard(m_lock);
    std::unique_ptr<CBlockTransformPlan>& plan = m_plans[place];
    if (plan == nullptr)
        plan = std::make_unique<CBlockTransformPlan>(place);
    return *plan;
}

} // namespace qrb::platform
