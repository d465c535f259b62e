// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CThread.h"

namespace qrb {

/// A thread that sleeps until it is told to work.
class CPersistentThreadBase : public CThread {
public:
    using CThread::CThread;

    /// Has the thread work once. Thread: any.
    virtual void wake() = 0;
};

} // namespace qrb
