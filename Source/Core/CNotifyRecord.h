// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CArray.h"
#include "Core/CCheckedObject.h"
#include "Core/CQrbStdAllocator.h"
#include "Core/CString.h"
#include "Platform/CRecursiveLock.h"

namespace qrb {

class CObject;
struct CObjectEvent;

/// Who listens to one event, by sender, and the deliveries of it that are under way. Everything here is for the holder
/// of the lock.
class CNotifyRecord : public CCheckedObject {
public:
    struct CListener {
        CObject* object;             ///< null once knocked out of a delivery
        const CObjectEvent* handler; ///< of the class of the object
    };
    using Listeners = CArray<CListener>;

    /// One delivery: what is still to be called. Frames nest.
    class CFrame {
    public:
        CFrame(CNotifyRecord& record, const CObject& sender) : m_record(record), m_sender(&sender)
        {
            record.m_frames.append(this);
        }
        CFrame(const CFrame&) = delete;
        CFrame& operator=(const CFrame&) = delete;
        ~CFrame() { m_record.m_frames.removeLast(); }

        Listeners calls;

    private:
        friend class CNotifyRecord;

        CNotifyRecord& m_record;
        const CObject* m_sender;
    };

    explicit CNotifyRecord(const CString& eventName) : m_eventName(eventName) {}

    [[nodiscard]] platform::CRecursiveLock& lock() { return m_lock; }
    [[nodiscard]] const CString& eventName() const { return m_eventName; }
    /// The listeners of a sender, or null.
    [[nodiscard]] const Listeners* listeners(const CObject& sender) const;
    void add(const CObject& sender, CObject& listener, const CObjectEvent& handler);
    void remove(const CObject& sender, const CObject& listener);
    /// Forgets a sender; gives the listeners it had.
    Listeners removeSender(const CObject& sender);

private:
    const CString m_eventName;
    platform::CRecursiveLock m_lock{50};
    CMap<const CObject*, Listeners> m_listeners; ///< in the order of registration
    CArray<CFrame*> m_frames;                    ///< the innermost last
};

} // namespace qrb
