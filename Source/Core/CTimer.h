// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CObject.h"
#include "Platform/CMessageLoop.h"

namespace qrb {

/// Raises "tick" in intervals (tag core:timer). It runs on the message loop of the thread that sets its interval, and
/// its listeners get the event through their bridges, never inside the loop's callback. Without "fps" and "interval" it
/// never ticks.
class CTimer : public CObject {
public:
    CTimer();
    ~CTimer() override;

    static void declare(CObjectClassInfo& info);

    void unlink() override;

    /// Ticks a second, 0.001 to 1000.
    [[nodiscard]] virtual CErrorPtr setFps(const CObjectAttr& value);
    /// Seconds between ticks, 0.001 or more.
    [[nodiscard]] virtual CErrorPtr setInterval(const CObjectAttr& value);

    [[nodiscard]] double interval() const { return m_interval; }
    [[nodiscard]] bool isTicking() const { return m_systemTimer != 0; }

private:
    CErrorPtr changeInterval(double seconds);
    CErrorPtr initTimer();
    void stop();
    static void onSystemTimer(platform::CMessageLoop::TimerId id, platform::CMessageLoop& loop);

    double m_interval = 0.0; ///< seconds
    platform::CMessageLoop::TimerId m_systemTimer = 0;
};

} // namespace qrb
