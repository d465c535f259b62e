// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParamCollector.h"

#include "Audio/CAudioEnv.h"
#include "Audio/CAudioParamDeferredTarget.h"
#include "Audio/CAudioParamUpdateInfo.h"
#include "Audio/CSharedParam.h"
#include "Audio/ParamFilters/CAudioParamFilter.h"

#include <algorithm>
#include <utility>

namespace qrb {

using platform::CScopedLock;

void CAudioParamCollector::declare(CObjectClassInfo& info)
{
    CObject::declare(info);
}

CAudioParamCollector::CAudioParamCollector() = default;

CAudioParamCollector::~CAudioParamCollector()
{
    m_hasDeferred.store(true); // the hook is not called any more: its owner may be half gone
    m_sharedParams.clear();    // other instances reach the hook through these until they are gone
    m_wakeHook = nullptr;
    m_filters.clear(); // filters leave their parameters, under the lock
}

CErrorPtr CAudioParamCollector::initChilds()
{
    QRB_TRY(CObject::initChilds());
    return findObjectByAttr("env", m_env);
}

CAudioParam& CAudioParamCollector::getParam(const CString& path)
{
    const CString& resolved = m_renames.resolve(path);
    CAudioParamPathEntry* entry = m_params.find(resolved);
    if (entry == nullptr)
        entry = &m_params.add(std::make_unique<CAudioParam>(*this, resolved));
    return *static_cast<CAudioParam*>(entry);
}

CAudioParam* CAudioParamCollector::findParam(const CString& path) const
{
    return static_cast<CAudioParam*>(m_params.find(m_renames.resolve(path)));
}

bool CAudioParamCollector::isRenamed(const CString& path) const
{
    return m_renames.resolve(path) != path;
}

void CAudioParamCollector::addRename(const CString& original, const CString& renamed)
{
    m_renames.add(original, renamed);
}

void CAudioParamCollector::addTwinRenames(const CString& prefix, const CString& twin)
{
    m_renames.addTwins(prefix, twin);
}

void CAudioParamCollector::listParams(CArray<CAudioParam*>& out) const
{
    const std::size_t first = out.size();
    for (CAudioParamPathEntry* entry = m_params.newest(); entry != nullptr; entry = CAudioParamPathTree::older(*entry))
        out.append(static_cast<CAudioParam*>(entry));
    std::ranges::sort(out.span().subspan(first), {}, &CAudioParam::path);
}

void CAudioParamCollector::addSharedParam(const CString& path, CAppData& store, const CString& dataName)
{
    CAudioParam& param = getParam(path);
    for (const auto& link : m_sharedParams)
        if (link->is(param, store, dataName))
            return;
    m_sharedParams.append(std::make_unique<CSharedParam>(param, store, dataName));
    m_hasSharedParams.store(true, std::memory_order_release);
    m_sharedParams.back()->run();
}

void CAudioParamCollector::addFilter(std::unique_ptr<CAudioParamFilter> filter)
{
    m_filters.append(std::move(filter));
}

bool CAudioParamCollector::enterParams(EAudioParamWait wait)
{
    if (wait == EAudioParamWait::wait) {
        ++m_paramLockCount;
        m_paramLock.enter();
        return true;
    }
    if (!m_paramLock.tryEnter())
        return false;
    ++m_paramLockCount;
    return true;
}

void CAudioParamCollector::leaveParams()
{
    m_paramLock.leave();
    if (--m_paramLockCount == 0)
        announceDeferred();
}

void CAudioParamCollector::enterPreset()
{
    ++m_presetLockCount;
}

void CAudioParamCollector::leavePreset()
{
    if (--m_presetLockCount == 0)
        announceDeferred();
}

void CAudioParamCollector::announceDeferred()
{
    if (m_isDeferredWaiting.load() && m_paramLockCount.load() == 0 && m_presetLockCount.load() == 0)
        wakeDeferred();
}

void CAudioParamCollector::queue(CAudioParamUpdateRecord* record)
{
    CAudioParamUpdateRecord* unused = nullptr;
    {
        const CScopedLock lock(m_env->lock());
        // While audio runs every block empties the queue; merging only bounds it when blocks stop coming.
        if (m_env->isActive() && m_queue.size() < CAudioParamUpdateQueue::kMergeCount)
            m_queue.append(record);
        else
            unused = m_queue.appendMerged(record);
    }
    if (unused != nullptr)
        m_updatePool.give(unused);
}

bool CAudioParamCollector::isWaiting(const CAudioParam& param)
{
    const CScopedLock lock(m_env->lock());
    return m_queue.isWaiting(param.m_anchor);
}

void CAudioParamCollector::splice(CAudioParamUpdateList& list)
{
    const CAudioParamGuard guard(*this);
    CAudioParamUpdateList dropped;
    {
        const CScopedLock lock(m_env->lock());
        m_queue.splice(list, m_env->isActive() ? nullptr : &dropped);
    }
    while (CAudioParamUpdateRecord* const record = dropped.takeFirst())
        m_updatePool.give(record);
}

void CAudioParamCollector::takeQueue()
{
    m_queue.moveTo(m_taken);
}

void CAudioParamCollector::applyTaken()
{
    while (CAudioParamUpdateRecord* const record = m_taken.takeFirst()) {
        record->param()->applyToAudio(*record);
        m_updatePool.giveFromAudio(record);
        ++m_audioChangeCount;
    }
}

void CAudioParamCollector::flushQueue()
{
    {
        const CScopedLock lock(m_env->lock());
        takeQueue();
    }
    applyTaken();
}

std::size_t CAudioParamCollector::waitingCount()
{
    const CScopedLock lock(m_env->lock());
    return m_queue.size();
}

void CAudioParamCollector::tellListeners(CAudioParam& param, const CAudioParamUpdate& record)
{
    CAudioParamUpdateInfo info;
    info.sender = record.source;
    info.key = listenerKey(param);
    info.param = &param;
    info.update = record;
    notify(&info);
}

void CAudioParamCollector::defer(CAudioParamDeferredTarget& target, std::int32_t index, double value,
                                 const CAudioParamGuard&)
{
    m_deferred.addCall(target, index, value);
    m_isDeferredWaiting.store(true);
}

void CAudioParamCollector::deferLatest(CAudioParamDeferredTarget& target, std::int32_t index, double value,
                                       const CAudioParamGuard&)
{
    m_deferred.addLatest(target, index, value);
    m_isDeferredWaiting.store(true);
}

void CAudioParamCollector::deferChange(const CAudioParamDeferredCalls::CChange& change)
{
    m_deferred.addChange(change);
    m_isDeferredWaiting.store(true);
}

void CAudioParamCollector::cancelDeferred(const CAudioParamDeferredTarget& target)
{
    const CScopedLock lock(m_paramLock);
    m_deferred.cancel(target);
    m_running.cancel(target);
}

void CAudioParamCollector::setWakeHook(std::function<void()> hook)
{
    m_wakeHook = std::move(hook);
    if (hasDeferred() && m_wakeHook)
        m_wakeHook();
}

void CAudioParamCollector::wakeDeferred()
{
    if (!m_hasDeferred.exchange(true) && m_wakeHook)
        m_wakeHook();
}

void CAudioParamCollector::onBound()
{
    // A link of application data may have waited for this.
    if (m_hasSharedParams.load(std::memory_order_acquire))
        wakeDeferred();
}

void CAudioParamCollector::runDeferred()
{
    // Whoever holds parameters now announces the work again when done.
    m_hasDeferred.store(false);
    if (m_isRunning)
        return;
    m_isRunning = true;
    m_readerPool.prepare();
    takeDeferred();
    runChanges();
    runCalls();
    m_running.clear();
    for (std::size_t i = 0; i < m_sharedParams.size(); ++i)
        m_sharedParams[i]->run();
    m_isRunning = false;
}

void CAudioParamCollector::takeDeferred()
{
    if (m_paramLockCount.load() != 0 || m_presetLockCount.load() != 0)
        return;
    const CScopedLock lock(m_paramLock);
    m_isDeferredWaiting.store(false);
    m_deferred.swap(m_running);
}

void CAudioParamCollector::runChanges()
{
    for (const CAudioParamDeferredCalls::CChange& change : m_running.changes()) {
        const CAudioParamGuard guard(*this);
        CAudioParamUpdate record = change.param->m_edit.wholeGroup(change.group, change.group);
        const std::int32_t count = record.elementCount;
        record.firstElement = std::min(change.firstElement, count);
        record.elementCount = std::min(change.endElement, count) - record.firstElement;
        record.isToEnd = change.endElement >= count;
        record.source = change.source;
        if (record.elementCount > 0)
            record.values += static_cast<std::ptrdiff_t>(record.firstElement) * record.format.elementSize;
        selectPreset(*change.param, record, {});
        tellListeners(*change.param, record);
    }
}

void CAudioParamCollector::runCalls()
{
    for (std::size_t i = 0; i < m_running.calls().size(); ++i) {
        const CAudioParamDeferredCalls::CCall call = m_running.calls()[i];
        if (call.target != nullptr)
            call.target->onDeferred(call.index, call.value);
    }
}

} // namespace qrb
