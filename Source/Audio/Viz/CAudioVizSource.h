// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioParamPathEntry.h"
#include "Audio/Viz/CAudioVizList.h"
#include "Platform/CRecursiveLock.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace qrb {

/// Where the modules of one name leave records and readers find them. Entered in its collector under its name and as
/// old as that.
///
/// The audio thread posts: it takes a record that lies ready, fills it and gives it back, without memory from anywhere
/// and without waiting. Its lock is held by readers for the move of a list only, and the audio thread merely tries it;
/// what it can't hand over at once goes with the next record. Readers make the records that modules will need, and
/// destroy them.
class CAudioVizSource : public CAudioParamPathEntry {
public:
    /// Records that wait to be read; behind that the oldest is taken for the newest.
    static constexpr std::size_t kMaxRecords = 64;
    /// The same for each line of a source of spectra, which are large.
    static constexpr std::size_t kMaxSpectra = 2;

    explicit CAudioVizSource(const CString& name) : CAudioParamPathEntry(name) {}

    /// Whether anybody listens. Thread: any.
    [[nodiscard]] bool isActive() const { return m_listenerCount.load(std::memory_order_acquire) > 0; }
    /// The most records that wait, of the present lines. Thread: any.
    [[nodiscard]] std::size_t limit() const;

    // Posting. Thread: audio.

    /// A line more, or one that goes. False if the source has records of another type already.
    [[nodiscard]] bool addLine(EAudioVizType type);
    void removeLine() { m_lineCount.fetch_sub(1, std::memory_order_acq_rel); }
    /// How many values a spectrum will have.
    void setBinCount(std::size_t count) { m_binCount.store(count, std::memory_order_release); }
    /// A record with room for what setBinCount() told; null if there is none, so that this one is left out.
    [[nodiscard]] std::unique_ptr<CAudioVizData> take();
    void post(std::unique_ptr<CAudioVizData> record);

    // Reading. Thread: any, one at a time: the collector's readers take turns.

    /// Counts listeners; with the last one all records go.
    void addListener() { m_listenerCount.fetch_add(1, std::memory_order_acq_rel); }
    void removeListener();
    /// Takes all records that wait.
    [[nodiscard]] CAudioVizList takeFresh();
    /// Hands records back that have been read, and makes those that are missing.
    void giveBack(CAudioVizList&& records);
    /// Forgets records that wait. Thread: any.
    void flush();

private:
    [[nodiscard]] bool fits(const CAudioVizData& record) const;
    [[nodiscard]] std::unique_ptr<CAudioVizData> takeHeld();
    void dropOldest();
    void destroyAll();
    void exchangeRecords(CAudioVizList& ready, std::size_t count);
    void destroyUnfit(CAudioVizList& records);
    [[nodiscard]] std::unique_ptr<CAudioVizData> makeRecord() const;

    std::atomic<std::int32_t> m_listenerCount{0};
    std::atomic<std::int32_t> m_lineCount{0};
    std::atomic<std::int32_t> m_type{kNoType};
    std::atomic<std::size_t> m_binCount{0};

    CAudioVizList m_waiting; ///< audio thread only: posted while the lock was busy

    platform::CRecursiveLock m_lock{50}; ///< guards the next three
    CAudioVizList m_fresh;
    CAudioVizList m_free;
    CAudioVizList m_unfit; ///< of another size than is needed now

    std::size_t m_existing = 0;      ///< readers only: records made and not destroyed
    std::size_t m_readyBinCount = 0; ///< readers only: what the records in hand were looked through for

    static constexpr std::int32_t kNoType = -1;
};

} // namespace qrb
