// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>

namespace qrb::platform {

/// Posted messages and timers of one thread, the one that makes the loop. It either runs by itself (`run`), or a host
/// pumps it: the host waits until `fileDescriptor` is readable and calls `pump`.
///
/// Callbacks run on the owning thread with no lock of the loop held. They may post, start and stop timers (their own
/// too), pump and quit; they may not destroy the loop. All operations belong to the owning thread where not said
/// otherwise.
class CMessageLoop {
public:
    /// Number of a timer; no two timers of the process share one. 0 is no timer.
    using TimerId = std::uint64_t;
    using Callback = std::function<void()>;
    using Clock = std::function<double()>;

    /// `clock`: seconds that timers are measured by; empty for the system's. A loop with a clock of its own is pumped,
    /// since the system can't tell when such a timer is due.
    explicit CMessageLoop(Clock clock = {});
    /// Drops messages and timers that are left, without running them.
    ~CMessageLoop();

    CMessageLoop(const CMessageLoop&) = delete;
    CMessageLoop& operator=(const CMessageLoop&) = delete;

    /// The system's error number if the loop could not be set up, else 0. Such a loop can be pumped, but neither wakes
    /// nor starts timers.
    [[nodiscard]] int setupError() const;

    /// Runs `message` in a later turn of the loop; messages keep their order. Thread: any.
    void post(Callback message);

    /// Calls `callback` every `intervalSeconds`, first after one interval. Turns that come late make up for nothing:
    /// missed calls are dropped, and the timer keeps its beat. 0 on failure, with the reason in `errno`.
    [[nodiscard]] TimerId startTimer(double intervalSeconds, Callback callback);
    /// The callback does not run again after this. An unknown number is ignored.
    void stopTimer(TimerId id);
    /// Stops the timer on whichever loop of the calling thread has it; unknown numbers are ignored.
    static void stopTimerOfThread(TimerId id);

    /// Seconds by the clock that its timers are measured by.
    [[nodiscard]] double now() const;

    /// Waits for messages and timers and runs them until `quit`.
    void run();
    /// Makes `run` return after the current turn; if none runs, the next one returns after its first turn.
    /// Thread: any.
    void quit();
    /// One turn without waiting: the messages that were there at its begin, then each timer that is due, once. Gives
    /// the number of callbacks run.
    std::size_t pump();
    /// Readable while a turn has something to do; -1 if the loop could not be set up. The loop keeps it.
    [[nodiscard]] int fileDescriptor() const;

    /// The calling thread's loop: the one that is being pumped, else the one of the innermost `CScope`, else the
    /// youngest one that lives; null if the thread has none. Thread: any.
    [[nodiscard]] static CMessageLoop* current();

    /// Makes a loop the current one of its thread for the length of a scope, where several live on one thread.
    class CScope {
    public:
        [[nodiscard]] explicit CScope(CMessageLoop& loop);
        ~CScope();
        CScope(const CScope&) = delete;
        CScope& operator=(const CScope&) = delete;

    private:
        CMessageLoop* m_outer;
    };

private:
    struct CState;
    std::unique_ptr<CState> m_state;

    std::size_t runMessages();
    std::size_t runTimers();
    void armTimer();
};

} // namespace qrb::platform
