// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/CSystemThread.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <memory>
#include <pthread.h>
#include <sched.h>
#include <string>

namespace qrb::platform {

static_assert(sizeof(pthread_t) == sizeof(std::uint64_t));

namespace {

constexpr std::size_t kMaxNameLength = 15;
/// Above ordinary threads, below what a sound server gives to its own.
constexpr int kTimeCriticalPriority = 15;

struct CStart {
    std::string name;
    std::function<void()> body;
    EThreadPriority priority;
};

void* runThread(void* argument)
{
    const std::unique_ptr<CStart> start(static_cast<CStart*>(argument));
    pthread_setname_np(pthread_self(), start->name.c_str());
    if (start->priority == EThreadPriority::timeCritical) {
        sched_param parameters{};
        parameters.sched_priority =
            std::clamp(kTimeCriticalPriority, sched_get_priority_min(SCHED_RR), sched_get_priority_max(SCHED_RR));
        // Refused without the right to it; the thread then works at normal priority.
        pthread_setschedparam(pthread_self(), SCHED_RR, &parameters);
    }
    start->body();
    return nullptr;
}

} // namespace

CSystemThread::~CSystemThread()
{
    join();
}

int CSystemThread::start(const char* name, std::function<void()> body, EThreadPriority priority)
{
    if (m_isStarted)
        return EBUSY;
    auto start = std::make_unique<CStart>();
    start->name = std::string(name).substr(0, kMaxNameLength);
    start->body = std::move(body);
    start->priority = priority;

    // The new thread inherits the mask of its maker. The process's signals are the host's to handle, on its threads;
    // faults of the thread itself are not blocked, since that would end the process past the host's handlers.
    sigset_t blocked;
    sigset_t before;
    sigfillset(&blocked);
    for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGSYS, SIGABRT})
        sigdelset(&blocked, fault);
    pthread_sigmask(SIG_SETMASK, &blocked, &before);
    pthread_t handle{};
    const int error = pthread_create(&handle, nullptr, runThread, start.get());
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    if (error != 0)
        return error;
    static_cast<void>(start.release()); // the thread has it now
    m_handle = handle;
    m_isStarted = true;
    return 0;
}

void CSystemThread::join()
{
    if (!m_isStarted)
        return;
    pthread_join(m_handle, nullptr);
    m_isStarted = false;
}

std::uint64_t CSystemThread::currentId()
{
    // Counted, since the system hands the numbers of dead threads out again.
    static std::atomic<std::uint64_t> lastId{0};
    thread_local const std::uint64_t id = ++lastId;
    return id;
}

} // namespace qrb::platform
