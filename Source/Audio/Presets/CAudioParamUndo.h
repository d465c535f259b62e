// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Presets/CAudioParamUndoEntry.h"
#include "Core/CObject.h"
#include "Platform/CRecursiveLock.h"

#include <memory>

namespace qrb {

class CAudioParamCollector;
class CAudioParamUndoHistory;
class CAudioParamUpdateList;

/// Whether a move in the history is told.
enum class ENotifyHistory { no, yes };

/// The history of gestures of an instance: base of the object that editors talk to.
///
/// Whoever changes it holds the instance's parameters first and this object's lock second, and the latter never while
/// values change; so reading it takes the second lock alone. Thread: any.
class CAudioParamUndo : public CObject {
public:
    /// Fewer gestures than this are not kept, whatever is declared.
    static constexpr std::int32_t kMinCount = 4;

    static void declare(CObjectClassInfo& info);

    CAudioParamUndo();
    ~CAudioParamUndo() override;

    CErrorPtr init() override;
    CErrorPtr initChilds() override;

    [[nodiscard]] CAudioParamCollector& paramCollector() const { return *m_collector; }

    /// Enters a gesture, unless nothing was noted in it. It may become one with the last.
    void submit(std::unique_ptr<CAudioParamUndoEntry> entry);
    /// Undoes or redoes until that many gestures are applied; a number out of range does nothing. The modules get the
    /// values of all gestures on the way in one block.
    void setPosition(std::int32_t position, ENotifyHistory notify = ENotifyHistory::yes);
    /// The start and the label of each gesture, and how many gestures are applied.
    void getHistory(CArray<CString>& outLabels, std::int32_t& outPosition) const;

    /// Puts another history, or none, in place of the current one, and returns that.
    [[nodiscard]] std::unique_ptr<CAudioParamUndoHistory> swapHistory(std::unique_ptr<CAudioParamUndoHistory> next);
    /// A copy of the current history; null if there is none.
    [[nodiscard]] std::unique_ptr<CAudioParamUndoHistory> copyHistory();
    /// Forgets all gestures.
    void clearHistory();

protected:
    /// The list or the position has changed. Called without lock(), though others may be held.
    virtual void onHistoryChanged() {}

    /// Guards the history, and what a derived class keeps. Taken behind the parameters and the banks of registries,
    /// before queues; no value is changed and no listener called while it is held.
    [[nodiscard]] platform::CRecursiveLock& lock() const { return m_lock; }

private:
    void apply(const CAudioParamUndoEntry& entry, EUndoState state, CAudioParamUpdateList& list);

    mutable platform::CRecursiveLock m_lock{4000};
    CAudioParamCollector* m_collector = nullptr;
    std::unique_ptr<CAudioParamUndoHistory> m_history; ///< none until the first gesture
    std::int32_t m_maxCount = kMinCount;
};

} // namespace qrb
