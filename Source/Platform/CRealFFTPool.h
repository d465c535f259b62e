// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/CRealFFTPlan.h"
#include "Platform/CRecursiveLock.h"

#include <array>
#include <memory>

namespace qrb::platform {

/// Transform plans that everything in the process shares, one for each size, made on first use. A plan stays until the
/// pool goes: it is small, and planning anew would cost whoever rewires an instance next.
class CRealFFTPool {
public:
    CRealFFTPool();
    ~CRealFFTPool();

    /// The plan of 2^log2Size samples, brought into the plan's limits; lives as long as the pool. Thread: any.
    [[nodiscard]] const CRealFFTPlan& plan(unsigned log2Size);

private:
    CRecursiveLock m_lock;
    std::array<std::unique_ptr<CRealFFTPlan>, CRealFFTPlan::kMaxLog2Size + 1> m_plans;
};

} // namespace qrb::platform
