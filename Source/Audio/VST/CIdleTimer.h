// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <base/source/fobject.h>
#include <pluginterfaces/gui/iplugview.h>

#include <functional>

namespace qrb {

/// Calls from time to time on the host's main thread, if the host gives its run loop away. The host may hold on to it
/// behind stop(), which it survives without calls.
class CIdleTimer final : public Steinberg::FObject, public Steinberg::Linux::ITimerHandler {
public:
    explicit CIdleTimer(std::function<void()> call) : m_call(std::move(call)) {}

    /// Looks for the run loop in the context. False without one.
    bool start(Steinberg::FUnknown* context);
    void stop();
    void PLUGIN_API onTimer() override;

    DEFINE_INTERFACES
    DEF_INTERFACE(Steinberg::Linux::ITimerHandler)
    END_DEFINE_INTERFACES(FObject)
    REFCOUNT_METHODS(FObject)

private:
    std::function<void()> m_call;
    Steinberg::IPtr<Steinberg::Linux::IRunLoop> m_loop;
};

} // namespace qrb
