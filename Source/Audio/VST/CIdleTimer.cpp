// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/VST/CIdleTimer.h"

// Ids that no source of the SDK defines.
namespace Steinberg {
DEF_CLASS_IID(IPlugView)
DEF_CLASS_IID(IPlugFrame)
namespace Linux {
DEF_CLASS_IID(IRunLoop)
DEF_CLASS_IID(ITimerHandler)
} // namespace Linux
} // namespace Steinberg

namespace qrb {

constexpr Steinberg::Linux::TimerInterval kInterval = 30; // milliseconds

bool CIdleTimer::start(Steinberg::FUnknown* context)
{
    if (m_loop != nullptr)
        return true;
    const Steinberg::FUnknownPtr<Steinberg::Linux::IRunLoop> loop(context);
    if (!loop || loop->registerTimer(this, kInterval) != Steinberg::kResultOk)
        return false;
    m_loop = loop;
    return true;
}

void CIdleTimer::stop()
{
    m_call = nullptr;
    if (m_loop != nullptr)
        m_loop->unregisterTimer(this);
    m_loop = nullptr;
}

void PLUGIN_API CIdleTimer::onTimer()
{
    if (m_call)
        m_call();
}

} // namespace qrb
