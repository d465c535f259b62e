// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/CBlockTransformPlan.h"
#include "Platform/CRecursiveLock.h"

#include <array>
#include <memory>

namespace qrb::platform {

/// Plans of block transforms that everything in the process shares, one for each block, made on first use. A plan stays until the
/// pool goes: it is small, and planning anew would cost whoever rewires an instance next.
class CBlockTransformPool {
public:
    CBlockTransformPool();
    ~CBlockTransformPool();

    /// The plan for blocks of 2^log2Block samples, brought into the plan's limits; lives as long as the pool. Thread: any.
    [[nodiscard]] const CBlockTransformPlan& plan(unsigned log2Block);

private:
    CRecursiveLock m_lock;
    std::array<std::unique_ptr<CBlockTransformPlan>, CBlockTransformPlan::kMaxLog2Block + 1> m_plans;
};

} // namespace qrb::platform
