// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CCheckedObject.h"
#include "Core/CQrbStdAllocator.h"
#include "Platform/CRecursiveLock.h"

#include <cstdint>

namespace qrb {

class CTimer;

/// The running timers of the process, by a number that is never used twice: what a system timer that fires late finds
/// here is its own CTimer or nothing.
struct CTimerTable : CCheckedObject {
    platform::CRecursiveLock lock{4000}; ///< guards the fields, and keeps a timer that ticks from being destroyed
    CMap<std::uint64_t, CTimer*> timers;
    std::uint64_t lastNumber = 0;
};

} // namespace qrb
