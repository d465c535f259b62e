// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <pluginterfaces/base/smartpointer.h>
#include <pluginterfaces/gui/iplugview.h>

#include <vector>

namespace vst3 {

/// The run loop that a host lends to its plug-ins, in the hand of its owner: timers run when they are told to, however
/// short the time. Outlives all references. Thread: the owner's.
class CRunLoop final : public Steinberg::Linux::IRunLoop {
public:
    virtual ~CRunLoop() = default;

    void runTimers();
    [[nodiscard]] std::size_t timerCount() const { return m_timers.size(); }

    Steinberg::tresult PLUGIN_API registerEventHandler(Steinberg::Linux::IEventHandler*,
                                                       Steinberg::Linux::FileDescriptor) override
    {
        return Steinberg::kResultFalse;
    }
    Steinberg::tresult PLUGIN_API unregisterEventHandler(Steinberg::Linux::IEventHandler*) override
    {
        return Steinberg::kResultFalse;
    }
    Steinberg::tresult PLUGIN_API registerTimer(Steinberg::Linux::ITimerHandler* handler,
                                                Steinberg::Linux::TimerInterval milliseconds) override;
    Steinberg::tresult PLUGIN_API unregisterTimer(Steinberg::Linux::ITimerHandler* handler) override;
    Steinberg::tresult PLUGIN_API queryInterface(const Steinberg::TUID id, void** out) override;
    Steinberg::uint32 PLUGIN_API addRef() override { return 1; }
    Steinberg::uint32 PLUGIN_API release() override { return 1; }

private:
    std::vector<Steinberg::IPtr<Steinberg::Linux::ITimerHandler>> m_timers;
};

} // namespace vst3
