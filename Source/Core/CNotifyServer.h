// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CAttrDictionary.h"
#include "Core/CCheckedObject.h"
#include "Core/CError.h"
#include "Core/CQrbStdAllocator.h"
#include "Core/CString.h"
#include "Platform/CRecursiveLock.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <utility>

namespace qrb {

class CNotifyRecord;
class CObject;
struct CObjectEvent;
enum class EPost;

/// The events of one tree: who listens to whom, object numbers, delivery. Owned by the tree's root.
/// Thread: any; what it points at belongs to its own threads.
class CNotifyServer : public CCheckedObject, public std::enable_shared_from_this<CNotifyServer> {
public:
    explicit CNotifyServer(std::uint32_t number);
    ~CNotifyServer() override;

    /// Number of this server, never used twice in a process entry.
    [[nodiscard]] std::uint32_t number() const { return m_number; }
    [[nodiscard]] std::int32_t takeObjectId() { return m_nextId.fetch_add(1, std::memory_order_relaxed); }

    /// Registers, or replaces the handler of, a listener of one event of one sender.
    void listen(const CObject& sender, const CString& eventName, CObject& listener, const CObjectEvent& handler);
    /// Removes a registration, also from deliveries under way.
    void unlisten(const CObject& sender, const CString& eventName, const CObject& listener);
    /// Removes all registrations of an object as sender and as listener.
    void removeObject(const CObject& object);

    /// Calls the listeners of this thread in the order of their registration and posts to those of other threads. The
    /// first error ends the delivery.
    [[nodiscard]] CErrorPtr raise(const CObject& sender, const CString& eventName, const CEventArgs& args, EPost post);

private:
    /// What an object takes part in: an event, and its sender, which may be the object itself.
    using Uses = CSet<std::pair<CNotifyRecord*, const CObject*>>;

    [[nodiscard]] CNotifyRecord* findRecord(const CString& eventName);
    [[nodiscard]] CNotifyRecord& makeRecord(const CString& eventName);
    void forgetUse(const CObject& object, CNotifyRecord& record, const CObject& sender);

    const std::uint32_t m_number;
    std::atomic<std::int32_t> m_nextId{0};
    platform::CRecursiveLock m_mapLock{4000};                ///< never held while a record's lock is waited for
    CMap<CString, std::unique_ptr<CNotifyRecord>> m_records; ///< live as long as the server
    CMap<const CObject*, Uses> m_uses;
};

} // namespace qrb
