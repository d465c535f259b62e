// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace qrb {

class CUpdateNotifier;

/// Names a notifier for good: one that is gone is never taken for a younger one at the same address. To be kept where
/// the notifier may die first.
struct CNotifierRef {
    const CUpdateNotifier* notifier = nullptr; ///< only compared
    std::uint64_t serial = 0;                  ///< no two notifiers of a process share one; 0 is none
};

} // namespace qrb
