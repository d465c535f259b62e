// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/Vst3Host/CRunLoop.h"

#include <algorithm>

// Ids that no source of the SDK defines.
namespace Steinberg::Linux {
DEF_CLASS_IID(IRunLoop)
} // namespace Steinberg::Linux

namespace vst3 {

using namespace Steinberg;

void CRunLoop::runTimers()
{
    const auto timers = m_timers; // one may go within the call of another
    for (const IPtr<Linux::ITimerHandler>& timer : timers)
        if (std::find(m_timers.begin(), m_timers.end(), timer) != m_timers.end())
            timer->onTimer();
}

tresult PLUGIN_API CRunLoop::registerTimer(Linux::ITimerHandler* handler, Linux::TimerInterval)
{
    if (handler == nullptr)
        return kInvalidArgument;
    m_timers.emplace_back(handler);
    return kResultOk;
}

tresult PLUGIN_API CRunLoop::unregisterTimer(Linux::ITimerHandler* handler)
{
    const auto found =
        std::find_if(m_timers.begin(), m_timers.end(), [&](const auto& timer) { return timer == handler; });
    if (found == m_timers.end())
        return kResultFalse;
    m_timers.erase(found);
    return kResultOk;
}

tresult PLUGIN_API CRunLoop::queryInterface(const TUID id, void** out)
{
    QUERY_INTERFACE(id, out, FUnknown::iid, Linux::IRunLoop)
    QUERY_INTERFACE(id, out, Linux::IRunLoop::iid, Linux::IRunLoop)
    return *out = nullptr, kNoInterface;
}

} // namespace vst3
