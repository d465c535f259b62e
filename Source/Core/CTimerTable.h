// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CCheckedObject.h"
#include "Core/CQrbStdAllocator.h"
#include "Platform/CMessageLoop.h"
#include "Platform/CRecursiveLock.h"

namespace qrb {

class CTimer;

/// The running timers of the process by the numbers of their system timers. Those are never used twice, so what a late
/// system timer finds here is its own CTimer or nothing.
struct CTimerTable : CCheckedObject {
    platform::CRecursiveLock lock{4000}; ///< guards the fields, and keeps a timer that ticks from being destroyed
    CMap<platform::CMessageLoop::TimerId, CTimer*> timers;
};

} // namespace qrb
