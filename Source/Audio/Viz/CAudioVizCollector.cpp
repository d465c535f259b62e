// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Viz/CAudioVizCollector.h"

#include "Audio/CAudioEnv.h"
#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioParamDef.h"
#include "Audio/Viz/CAudioVizExport.h"
#include "Audio/Viz/CAudioVizSlotManager.h"
#include "Audio/Viz/CAudioVizSource.h"
#include "Core/COutputStream.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace qrb {

using platform::CScopedLock;

void CAudioVizCollector::declare(CObjectClassInfo& info)
{
    CObject::declare(info);
}

CAudioVizCollector::CAudioVizCollector() = default;
CAudioVizCollector::~CAudioVizCollector() = default;

CErrorPtr CAudioVizCollector::initChilds()
{
    QRB_TRY(CObject::initChilds());
    QRB_TRY(findObjectByAttr("env", m_env));
    QRB_TRY(findObjectByAttr("param-collector", m_params));
    m_enableDef = dynamic_cast<const CAudioParamDef*>(findObject("shared::audio.param-enable-viz"));
    joinSlots();
    return {};
}

void CAudioVizCollector::joinSlots()
{
    m_slots = dynamic_cast<CAudioVizSlotManager*>(findObject("shared::audio.viz-slot-manager"));
    if (m_slots == nullptr)
        return;
    const CString slots = getAttrString("export-slot-param");
    if (!slots.empty()) {
        const CAudioVizExport::CPaths paths{slots, getAttrString("export-color-param"),
                                            getAttrString("instance-name-param", "plugin.modMain.instance-name"),
                                            getAttrString("group-names-param", "plugin.modMain.io-params.group-names")};
        m_export = std::make_unique<CAudioVizExport>(*m_params, paths, *m_slots);
    }
    m_slots->join(*this, m_export.get());
}

void CAudioVizCollector::unlink()
{
    if (m_slots != nullptr)
        std::exchange(m_slots, nullptr)->leave(*this);
    m_export.reset();
    CObject::unlink();
}

CAudioVizSource& CAudioVizCollector::source(const CString& name)
{
    CAudioParamPathEntry* entry = m_sources.find(name);
    if (entry == nullptr)
        entry = &m_sources.add(std::make_unique<CAudioVizSource>(name));
    return *static_cast<CAudioVizSource*>(entry);
}

void CAudioVizCollector::listen(std::int32_t kind, const CString& name, std::uint32_t listenerId)
{
    if (kind < kOwnInstance || name.empty() || name.length() > kMaxFullNameLength)
        return;
    {
        const CScopedLock lock(m_lock);
        const bool isNewName = m_sources.find(name) == nullptr;
        if (m_listeners.size() >= kMaxListeners || (isNewName && m_namedCount >= kMaxListeners) ||
            !m_listeners.emplace(listenerId, CListener{kind, name}).second)
            return;
        m_namedCount += isNewName ? 1 : 0;
        std::unique_ptr<CAudioVizReader>& reader = m_readers[clientOf(listenerId)];
        if (reader == nullptr)
            reader = std::make_unique<CAudioVizReader>();
        reader->addListener(kind, name);
    }
    if (kind == kOwnInstance)
        addRef(source(name));
    else if (m_slots != nullptr)
        m_slots->addListener(*this, kind, name);
}

void CAudioVizCollector::unlisten(std::uint32_t listenerId)
{
    CListener gone;
    {
        const CScopedLock lock(m_lock);
        const auto found = m_listeners.find(listenerId);
        if (found == m_listeners.end())
            return;
        gone = std::move(found->second);
        m_listeners.erase(found);
        const auto reader = m_readers.find(clientOf(listenerId));
        reader->second->removeListener(gone.kind, gone.name);
        if (reader->second->empty())
            m_readers.erase(reader);
    }
    if (gone.kind == kOwnInstance)
        removeRef(source(gone.name));
    else if (m_slots != nullptr)
        m_slots->removeListener(*this, gone.kind, gone.name);
}

void CAudioVizCollector::addRef(CAudioVizSource& source)
{
    {
        const CScopedLock lock(m_lock);
        source.addListener();
    }
    updateEnable(source);
}

void CAudioVizCollector::removeRef(CAudioVizSource& source)
{
    {
        const CScopedLock lock(m_lock);
        source.removeListener();
    }
    updateEnable(source);
}

void CAudioVizCollector::updateEnable(CAudioVizSource& source)
{
    if (m_enableDef == nullptr)
        return;
    const CScopedLock lock(m_enableLock);
    CAudioParam& param = m_params->getParam(source.path() + "-enable");
    if (!param.isBound())
        param.bindInfo(m_enableDef->info());
    if (param.info() != &m_enableDef->info())
        return; // a parameter of another meaning that happens to have the name
    const double enable = source.isActive() ? 1.0 : 0.0;
    if (param.value() != enable)
        param.setValue(enable, this);
}

CErrorPtr CAudioVizCollector::writeData(std::uint32_t clientId, double now, COutputStream& out)
{
    if (m_slots != nullptr)
        m_slots->gather();
    double time = 0.0;
    {
        const CScopedLock envLock(m_env->lock());
        time = m_env->timeNow();
    }
    QRB_TRY(out.writeDouble(time));
    gather();
    const CScopedLock lock(m_lock);
    const auto reader = m_readers.find(clientId);
    if (reader == m_readers.end())
        return out.writeInt32(0);
    reader->second->tellTime(now);
    updateRate();
    return reader->second->write(out);
}

void CAudioVizCollector::gather()
{
    // The slots' lock comes first: it is needed for what other instances get of this.
    std::optional<CScopedLock> slotsLock;
    if (m_export != nullptr)
        slotsLock.emplace(m_slots->lock());
    const CScopedLock lock(m_lock);
    for (CAudioParamPathEntry* entry = m_sources.newest(); entry != nullptr; entry = CAudioParamPathTree::older(*entry))
        if (auto& source = static_cast<CAudioVizSource&>(*entry); source.isActive())
            gatherSource(source);
}

void CAudioVizCollector::gatherSource(CAudioVizSource& source)
{
    const std::size_t limit = source.limit();
    source.visitPools([&](CAudioVizPool& pool) {
        CAudioVizList records = pool.takeFresh();
        for (CAudioVizData* record = records.first(); record != nullptr; record = CAudioVizList::next(*record)) {
            if (m_export != nullptr)
                m_slots->deliver(*this, source.path(), *record);
            const CAudioVizBlob blob = encodeVizData(*record);
            for (auto& entry : m_readers)
                entry.second->add(kOwnInstance, source.path(), blob, limit);
        }
        pool.giveBack(std::move(records));
    });
}

void CAudioVizCollector::updateRate()
{
    double rate = 0.0;
    for (const auto& entry : m_readers)
        rate = std::max(rate, entry.second->rate());
    if (rate == 0.0)
        return;
    const CScopedLock envLock(m_env->lock());
    m_env->vizUpdateRate = rate;
}

CErrorPtr CAudioVizCollector::writeSlotNames(COutputStream& out)
{
    return m_slots == nullptr ? out.writeInt32(0) : m_slots->writeNames(out);
}

void CAudioVizCollector::receive(std::int32_t slot, const CString& name, const CAudioVizBlob& record)
{
    const CScopedLock lock(m_lock);
    for (auto& entry : m_readers)
        entry.second->add(slot, name, record, CAudioVizSource::kMaxRecords);
}

void CAudioVizCollector::tellSlotNames()
{
    const CUpdateInfo info{this, kExportSlotNames};
    notify(&info);
}

void CAudioVizCollector::flush()
{
    for (CAudioParamPathEntry* entry = m_sources.newest(); entry != nullptr; entry = CAudioParamPathTree::older(*entry))
        static_cast<CAudioVizSource&>(*entry).visitPools([](CAudioVizPool& pool) { pool.flush(); });
    const CScopedLock lock(m_lock);
    for (auto& entry : m_readers)
        entry.second->flush();
}

} // namespace qrb
