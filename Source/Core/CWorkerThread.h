// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CCheckedObject.h"
#include "Core/CError.h"

#include <utility>

namespace qrb {

/// A job for a worker of the pool.
class CWorkerThread : public CCheckedObject {
public:
    /// Does the work. Thread: the worker's.
    [[nodiscard]] virtual CErrorPtr run() = 0;

    /// Runs the job and keeps the outcome.
    void runAndKeepError() { m_error = run(); }
    /// The error of the last run, given away; null after success. Not while the job runs.
    [[nodiscard]] CErrorPtr takeError() { return std::exchange(m_error, nullptr); }

private:
    CErrorPtr m_error;
};

} // namespace qrb
