// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Viz/CAudioVizList.h"
#include "Core/CCheckedObject.h"
#include "Platform/CRecursiveLock.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace qrb {

/// Records of one kind and size on their way round between modules and readers.
///
/// The audio thread posts: it takes a record that lies ready, fills it and gives it back, without memory from anywhere
/// and without waiting. The lock is held by readers for the move of a list only, and the audio thread merely tries it;
/// what it can't hand over at once goes with the next record. Readers make the records that modules will need, and
/// destroy them.
class CAudioVizPool : public CCheckedObject {
public:
    /// `limit`: most records that wait to be read; behind that the oldest is taken for the newest.
    CAudioVizPool(EAudioVizType type, std::size_t limit) : m_type(type), m_limit(limit) {}

    [[nodiscard]] EAudioVizType type() const { return m_type; }
    [[nodiscard]] std::size_t limit() const { return m_limit; }

    // Posting. Thread: audio.

    void addWriter() { m_writerCount.fetch_add(1, std::memory_order_acq_rel); }
    void removeWriter() { m_writerCount.fetch_sub(1, std::memory_order_acq_rel); }
    /// How many values a spectrum will have.
    void setBinCount(std::size_t count) { m_binCount.store(count, std::memory_order_release); }
    /// A record with room for what setBinCount() told; null if there is none, so that this one is left out.
    [[nodiscard]] std::unique_ptr<CAudioVizData> take();
    void post(std::unique_ptr<CAudioVizData> record);

    /// Thread: any.
    [[nodiscard]] bool isUsed() const { return m_writerCount.load(std::memory_order_acquire) > 0; }
    /// Forgets records that wait. Thread: any.
    void flush();

    // Reading. Thread: any, one at a time.

    /// Takes all records that wait.
    [[nodiscard]] CAudioVizList takeFresh();
    /// Hands records back that have been read, and makes those that are missing as long as the pool is in use.
    void giveBack(CAudioVizList&& records);
    /// Destroys all records but what the audio thread holds just now.
    void destroyAll();

private:
    [[nodiscard]] bool fits(const CAudioVizData& record) const;
    [[nodiscard]] std::unique_ptr<CAudioVizData> takeHeld();
    void exchangeRecords(CAudioVizList& ready, std::size_t count);
    void destroyUnfit(CAudioVizList& records);
    [[nodiscard]] std::unique_ptr<CAudioVizData> makeRecord() const;

    const EAudioVizType m_type;
    const std::size_t m_limit;
    std::atomic<std::int32_t> m_writerCount{0};
    std::atomic<std::size_t> m_binCount{0};

    CAudioVizList m_waiting; ///< audio thread only: posted while the lock was busy

    platform::CRecursiveLock m_lock{50}; ///< guards the next three
    CAudioVizList m_fresh;
    CAudioVizList m_free;
    CAudioVizList m_unfit; ///< of another size than is needed now

    std::size_t m_existing = 0;      ///< readers only: records made and not destroyed
    std::size_t m_readyBinCount = 0; ///< readers only: what the records in hand were looked through for
};

} // namespace qrb
