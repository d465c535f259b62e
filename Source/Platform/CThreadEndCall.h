// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace qrb::platform {

/// Calls a function at the end of each thread that wants it. Unlike an object of the thread with a destructor, it does
/// not keep the module in memory for as long as the threads live that it was used on: who unloads the module dismisses it.
/// For objects that live as long as the process or the module.
class CThreadEndCall {
public:
    constexpr explicit CThreadEndCall(void (*call)()) : m_call(call) {}

    /// From now on dismiss() may be called. False if the system has no room; then no thread can have its end told.
    [[nodiscard]] bool prepare();
    /// The end of the calling thread will be told, behind the end of its thread_local objects; but that of the thread
    /// which ends the process is not. Between prepare() and dismiss().
    [[nodiscard]] bool wantEnd();
    /// No end is told any more. No thread may be inside the other functions or the call.
    void dismiss();

private:
    static void tell(void* self);

    void (*m_call)();
    unsigned m_key = 0;
    bool m_isPrepared = false;
};

} // namespace qrb::platform
