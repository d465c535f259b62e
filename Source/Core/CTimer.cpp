// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CTimer.h"

#include "Core/CNumberText.h"
#include "Core/CObjectClassInfo.h"
#include "Core/CProcessState.h"
#include "Core/CTimerTable.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <limits>
#include <memory>

namespace qrb {

using platform::CMessageLoop;
using platform::CScopedLock;

namespace {

constexpr double kShortestInterval = 0.001;

/// At least the lower limit, also for what is not a number.
double atLeast(double value, double lowest)
{
    return value >= lowest ? value : lowest;
}

} // namespace

CTimer::CTimer() = default;

CTimer::~CTimer()
{
    stop();
}

void CTimer::declare(CObjectClassInfo& info)
{
    CObject::declare(info);
    info.attr<&CTimer::setFps>("fps");
    info.attr<&CTimer::setInterval>("interval");
}

void CTimer::unlink()
{
    stop();
    CObject::unlink();
}

CErrorPtr CTimer::setFps(const CObjectAttr& value)
{
    QRB_TRY(changeInterval(1.0 / std::min(atLeast(value.toDouble(), 0.001), 1000.0)));
    return nullptr;
}

CErrorPtr CTimer::setInterval(const CObjectAttr& value)
{
    QRB_TRY(changeInterval(atLeast(value.toDouble(), kShortestInterval)));
    return nullptr;
}

CErrorPtr CTimer::changeInterval(double seconds)
{
    if (std::abs(seconds - m_interval) <= std::numeric_limits<double>::epsilon())
        return nullptr;
    m_interval = seconds;
    QRB_TRY(initTimer());
    return nullptr;
}

CErrorPtr CTimer::initTimer()
{
    stop();
    CMessageLoop* const loop = CMessageLoop::current();
    if (loop == nullptr)
        return QRB_ERROR("@qrbstr_CTimer_initTimer_createTimer Timer creation error %1.", ENOTSUP);
    CTimerTable& table = *processState().timers;
    const CScopedLock guard(table.lock);
    const double milliseconds = static_cast<double>(roundHalfAway(m_interval * 1000.0));
    // The callback learns its own number this way; it runs on this thread, so never before the number is stored.
    const auto id = std::make_shared<CMessageLoop::TimerId>(0);
    *id = loop->startTimer(milliseconds / 1000.0, [id, loop] { onSystemTimer(*id, *loop); });
    if (*id == 0)
        return QRB_ERROR("@qrbstr_CTimer_initTimer_createTimer Timer creation error %1.", errno);
    m_systemTimer = *id;
    table.timers[m_systemTimer] = this;
    return nullptr;
}

void CTimer::stop()
{
    if (m_systemTimer == 0)
        return;
    CTimerTable& table = *processState().timers;
    const CScopedLock guard(table.lock);
    table.timers.erase(m_systemTimer);
    CMessageLoop::stopTimerOfThread(m_systemTimer);
    m_systemTimer = 0;
}

void CTimer::onSystemTimer(CMessageLoop::TimerId id, CMessageLoop& loop)
{
    CProcessState* const state = processStateOrNull();
    if (state == nullptr) {
        loop.stopTimer(id);
        return;
    }
    const CScopedLock guard(state->timers->lock);
    const auto found = state->timers->timers.find(id);
    if (found == state->timers->timers.end()) {
        loop.stopTimer(id); // its object has been released by a thread that can't reach this loop
        return;
    }
    if (const CErrorPtr error = found->second->raiseEvent("tick", {}, EPost::always))
        logError(error);
}

} // namespace qrb
