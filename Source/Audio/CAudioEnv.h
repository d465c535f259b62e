// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Filters/CDCDAWContextWorkspace.h"
#include "Core/CObject.h"
#include "Core/CQrbStdAllocator.h"
#include "Platform/CRecursiveLock.h"

#include <atomic>
#include <memory>

namespace qrb {

/// Where the threads of one instance meet. Its lock guards what is exchanged with the audio thread and is held for a
/// few instructions only: it is the one lock that the audio thread waits for in a block.
class CAudioEnv : public CObject {
public:
    static void declare(CObjectClassInfo& info);

    /// Thread: any.
    [[nodiscard]] platform::CRecursiveLock& lock() { return m_lock; }
    /// Whether audio is processed. Thread: any; set under the lock.
    [[nodiscard]] bool isActive() const { return m_isActive.load(std::memory_order_acquire); }
    void setActive(bool isActive) { m_isActive.store(isActive, std::memory_order_release); }
    /// Samples a second of the host. Thread: any.
    [[nodiscard]] double sampleRate() const { return m_sampleRate.load(std::memory_order_relaxed); }
    void setSampleRate(double rate) { m_sampleRate.store(rate, std::memory_order_relaxed); }
    /// Samples, written by the output node. Thread: any.
    [[nodiscard]] std::int32_t latency() const { return m_latency.load(std::memory_order_relaxed); }
    void setLatency(std::int32_t samples) { m_latency.store(samples, std::memory_order_relaxed); }
    /// Seconds of audio since the start. Thread: any.
    [[nodiscard]] double timeNow() const { return m_timeNow.load(std::memory_order_relaxed); }
    void setTimeNow(double seconds) { m_timeNow.store(seconds, std::memory_order_relaxed); }
    [[nodiscard]] double timeOfNextBlock() const { return m_timeOfNextBlock.load(std::memory_order_relaxed); }
    void setTimeOfNextBlock(double seconds) { m_timeOfNextBlock.store(seconds, std::memory_order_relaxed); }

    /// The workspace of a class, under its key; made on first use. T has a `kContextKey` of its own. Thread: audio.
    template <class T>
    [[nodiscard]] T& workspace()
    {
        auto& held = m_workspaces[T::kContextKey];
        if (held == nullptr)
            held = std::make_unique<T>();
        return static_cast<T&>(*held);
    }

    /// Frames a second of the exchange of visualisation data: what editors ask for, and the copy that the audio side
    /// works with. Guarded by the lock.
    double vizUpdateRate = 30.0;
    double vizUpdateRateAudio = 30.0;

private:
    platform::CRecursiveLock m_lock{50};
    std::atomic<bool> m_isActive{false};
    std::atomic<double> m_sampleRate{44100.0};
    std::atomic<std::int32_t> m_latency{0};
    std::atomic<double> m_timeNow{0.0};
    std::atomic<double> m_timeOfNextBlock{0.0};
    CMap<int, std::unique_ptr<CDCDAWContextWorkspace>> m_workspaces; ///< by key
};

} // namespace qrb
