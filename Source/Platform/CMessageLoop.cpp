// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/CMessageLoop.h"

#include "Platform/Clock.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cmath>
#include <deque>
#include <map>
#include <mutex>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/timerfd.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace qrb::platform {

namespace {

/// Longer intervals and waits are cut to this; it keeps the kernel's arithmetic in range.
constexpr double kLongestSeconds = 1.0e8;

/// The youngest loop of this thread, and the one that is asked for before it.
thread_local CMessageLoop* t_youngest = nullptr;
thread_local CMessageLoop* t_chosen = nullptr;

CMessageLoop::TimerId nextTimerId()
{
    static std::atomic<CMessageLoop::TimerId> last{0};
    return ++last;
}

class CDescriptor {
public:
    CDescriptor() = default;
    ~CDescriptor()
    {
        if (m_number >= 0)
            ::close(m_number);
    }
    CDescriptor(const CDescriptor&) = delete;
    CDescriptor& operator=(const CDescriptor&) = delete;

    void set(int number) { m_number = number; }
    [[nodiscard]] int get() const { return m_number; }
    [[nodiscard]] bool isOpen() const { return m_number >= 0; }

private:
    int m_number = -1;
};

} // namespace

struct CMessageLoop::CState {
    struct CMessage {
        std::uint64_t number = 0;
        Callback callback;
    };

    struct CTimerEntry {
        double interval = 0.0;
        double due = 0.0;
        /// Shared, so that a callback which stops its own timer does not destroy itself while it runs.
        std::shared_ptr<const Callback> callback;
    };

    Clock clock;
    bool hasOwnClock = false;
    int setupError = 0;
    CMessageLoop* older = nullptr;

    CDescriptor poll;
    CDescriptor wake;
    CDescriptor alarm;

    std::mutex mutex; // guards the messages; nothing else is reached from other threads
    std::deque<CMessage> messages;
    std::uint64_t lastNumber = 0;
    std::atomic<bool> isQuitting{false};

    std::map<TimerId, CTimerEntry> timers;

    void setup();
    void signal();
    void clearSignal();
};

void CMessageLoop::CState::setup()
{
    const auto add = [this](int descriptor) {
        epoll_event event{};
        event.events = EPOLLIN;
        return ::epoll_ctl(poll.get(), EPOLL_CTL_ADD, descriptor, &event) == 0;
    };
    poll.set(::epoll_create1(EPOLL_CLOEXEC));
    if (poll.isOpen())
        wake.set(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    if (wake.isOpen())
        alarm.set(::timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK));
    if (!alarm.isOpen() || !add(wake.get()) || !add(alarm.get()))
        setupError = errno;
}

void CMessageLoop::CState::signal()
{
    const std::uint64_t one = 1;
    // A full counter is a signal as well, so the outcome tells nothing.
    [[maybe_unused]] const ssize_t written = ::write(wake.get(), &one, sizeof one);
}

void CMessageLoop::CState::clearSignal()
{
    std::uint64_t count = 0;
    [[maybe_unused]] const ssize_t got = ::read(wake.get(), &count, sizeof count);
}

CMessageLoop::CMessageLoop(Clock clock) : m_state(std::make_unique<CState>())
{
    m_state->hasOwnClock = static_cast<bool>(clock);
    m_state->clock = clock ? std::move(clock) : Clock(clockSeconds);
    m_state->setup();
    m_state->older = std::exchange(t_youngest, this);
}

CMessageLoop::~CMessageLoop()
{
    for (CMessageLoop** link = &t_youngest; *link != nullptr; link = &(*link)->m_state->older) {
        if (*link == this) {
            *link = m_state->older;
            break;
        }
    }
    if (t_chosen == this)
        t_chosen = nullptr;
}

int CMessageLoop::setupError() const
{
    return m_state->setupError;
}

int CMessageLoop::fileDescriptor() const
{
    return m_state->setupError == 0 ? m_state->poll.get() : -1;
}

CMessageLoop* CMessageLoop::current()
{
    return t_chosen != nullptr ? t_chosen : t_youngest;
}

CMessageLoop::CScope::CScope(CMessageLoop& loop) : m_outer(std::exchange(t_chosen, &loop)) {}

CMessageLoop::CScope::~CScope()
{
    t_chosen = m_outer;
}

void CMessageLoop::post(Callback message)
{
    const std::lock_guard guard(m_state->mutex);
    m_state->messages.push_back({++m_state->lastNumber, std::move(message)});
    m_state->signal();
}

CMessageLoop::TimerId CMessageLoop::startTimer(double intervalSeconds, Callback callback)
{
    if (m_state->setupError != 0) {
        errno = m_state->setupError;
        return 0;
    }
    if (!(intervalSeconds > 0.0) || !callback) {
        errno = EINVAL;
        return 0;
    }
    const double interval = std::min(intervalSeconds, kLongestSeconds);
    const TimerId id = nextTimerId();
    m_state->timers[id] = {interval, m_state->clock() + interval,
                           std::make_shared<const Callback>(std::move(callback))};
    armTimer();
    return id;
}

void CMessageLoop::stopTimer(TimerId id)
{
    if (m_state->timers.erase(id) != 0)
        armTimer();
}

void CMessageLoop::stopTimerOfThread(TimerId id)
{
    for (CMessageLoop* loop = t_youngest; loop != nullptr; loop = loop->m_state->older)
        loop->stopTimer(id);
}

double CMessageLoop::now() const
{
    return m_state->clock();
}

void CMessageLoop::armTimer()
{
    if (m_state->setupError != 0)
        return;
    itimerspec setting{}; // all zero disarms
    if (!m_state->timers.empty() && !m_state->hasOwnClock) {
        double due = m_state->timers.begin()->second.due;
        for (const auto& [id, timer] : m_state->timers)
            due = std::min(due, timer.due);
        const double seconds = std::floor(due);
        setting.it_value.tv_sec = static_cast<time_t>(seconds);
        // Up by a nanosecond: woken a rounding error too early, a turn would find nothing due and be called again.
        setting.it_value.tv_nsec = std::min(static_cast<long>((due - seconds) * 1.0e9) + 1, 999'999'999L);
    }
    ::timerfd_settime(m_state->alarm.get(), TFD_TIMER_ABSTIME, &setting, nullptr);
}

void CMessageLoop::run()
{
    while (true) {
        pump();
        if (m_state->isQuitting.exchange(false))
            return;
        if (m_state->setupError != 0)
            return; // nothing could ever wake it
        epoll_event event{};
        ::epoll_wait(m_state->poll.get(), &event, 1, -1);
    }
}

void CMessageLoop::quit()
{
    m_state->isQuitting = true;
    m_state->signal();
}

std::size_t CMessageLoop::pump()
{
    const CScope scope(*this);
    return runMessages() + runTimers();
}

std::size_t CMessageLoop::runMessages()
{
    std::uint64_t last = 0;
    {
        const std::lock_guard guard(m_state->mutex);
        last = m_state->lastNumber;
        m_state->clearSignal();
    }
    std::size_t count = 0;
    while (true) {
        Callback callback;
        {
            // One at a time, so that a callback which pumps finds the others in their order.
            const std::lock_guard guard(m_state->mutex);
            if (m_state->messages.empty())
                break;
            if (m_state->messages.front().number > last) {
                m_state->signal();
                break;
            }
            callback = std::move(m_state->messages.front().callback);
            m_state->messages.pop_front();
        }
        callback();
        ++count;
    }
    return count;
}

std::size_t CMessageLoop::runTimers()
{
    if (m_state->timers.empty())
        return 0;
    const double now = m_state->clock();
    std::vector<std::pair<double, TimerId>> due;
    for (const auto& [id, timer] : m_state->timers) {
        if (timer.due <= now)
            due.emplace_back(timer.due, id);
    }
    std::sort(due.begin(), due.end());
    std::size_t count = 0;
    for (const auto& [dueTime, id] : due) {
        const auto found = m_state->timers.find(id);
        // Stopped, or already run by a callback that pumped.
        if (found == m_state->timers.end() || found->second.due > now)
            continue;
        CState::CTimerEntry& timer = found->second;
        const double missed = std::floor((now - timer.due) / timer.interval);
        timer.due += (missed + 1.0) * timer.interval;
        if (timer.due <= now) // rounding
            timer.due = now + timer.interval;
        const std::shared_ptr<const Callback> callback = timer.callback;
        (*callback)();
        ++count;
    }
    if (!due.empty())
        armTimer();
    return count;
}

} // namespace qrb::platform
