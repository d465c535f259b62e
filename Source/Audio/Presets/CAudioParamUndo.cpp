// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Presets/CAudioParamUndo.h"

#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioParamUpdateList.h"
#include "Audio/Presets/CAudioParamUndoHistory.h"

#include <algorithm>
#include <utility>

namespace qrb {

using platform::CScopedLock;

void CAudioParamUndo::declare(CObjectClassInfo& info)
{
    CObject::declare(info);
}

CAudioParamUndo::CAudioParamUndo() = default;
CAudioParamUndo::~CAudioParamUndo() = default;

CErrorPtr CAudioParamUndo::init()
{
    QRB_TRY(CObject::init());
    m_maxCount = std::max(kMinCount, getAttrInt("undo-count-max"));
    return {};
}

CErrorPtr CAudioParamUndo::initChilds()
{
    QRB_TRY(CObject::initChilds());
    return findObjectByAttr("param-collector", m_collector);
}

void CAudioParamUndo::submit(std::unique_ptr<CAudioParamUndoEntry> entry)
{
    if (entry == nullptr || entry->empty())
        return;
    {
        const CAudioParamGuard guard(*m_collector);
        const CScopedLock lock(m_lock);
        if (m_history == nullptr)
            m_history = std::make_unique<CAudioParamUndoHistory>();
        if (m_history->merge(*entry))
            return;
        m_history->append(std::move(entry), m_maxCount);
    }
    onHistoryChanged();
}

void CAudioParamUndo::setPosition(std::int32_t position, ENotifyHistory notify)
{
    {
        // The parameters stay held, so nobody else moves in the history meanwhile, and the list that is collected goes
        // to the modules before any later change.
        const CAudioParamGuard guard(*m_collector);
        if (m_history == nullptr || position < 0 || position > m_history->count() || position == m_history->position())
            return;
        CAudioParamUpdateList list;
        std::int32_t place = m_history->position();
        for (; place < position; ++place)
            apply(m_history->entry(place), EUndoState::after, list);
        for (; place > position; --place)
            apply(m_history->entry(place - 1), EUndoState::before, list);
        m_collector->splice(list);
        const CScopedLock lock(m_lock);
        m_history->setPosition(place);
    }
    if (notify == ENotifyHistory::yes)
        onHistoryChanged();
}

void CAudioParamUndo::apply(const CAudioParamUndoEntry& entry, EUndoState state, CAudioParamUpdateList& list)
{
    const auto applyParam = [&](CAudioParam& param, const CAudioParamUndoEntry::CSnapshots& snapshots) {
        // The default elements first: setting them writes group 0 as well.
        for (const bool isTemplate : {true, false})
            for (const CAudioParamUndoSnapshot& snapshot : snapshots)
                if ((snapshot.group == kAudioParamTemplateGroup) == isTemplate)
                    param.update(snapshot.record(state, &entry), {.deferredList = &list});
    };
    // Selectors of presets first: what they set is noted as well, perhaps with changes made by hand.
    for (const bool isSelector : {true, false}) {
        for (const auto& [name, snapshots] : entry.params()) {
            CAudioParam& param = m_collector->getParam(name);
            if (param.isBound() && param.info()->registryPath.empty() != isSelector)
                applyParam(param, snapshots);
        }
    }
}

void CAudioParamUndo::getHistory(CArray<CString>& outLabels, std::int32_t& outPosition) const
{
    outLabels.clear();
    outLabels.append("Undo history start");
    outPosition = 0;
    const CScopedLock lock(m_lock);
    if (m_history == nullptr)
        return;
    for (std::int32_t i = 0; i < m_history->count(); ++i)
        outLabels.append(m_history->entry(i).label);
    outPosition = m_history->position();
}

std::unique_ptr<CAudioParamUndoHistory> CAudioParamUndo::swapHistory(std::unique_ptr<CAudioParamUndoHistory> next)
{
    {
        const CAudioParamGuard guard(*m_collector);
        const CScopedLock lock(m_lock);
        std::swap(m_history, next);
    }
    onHistoryChanged();
    return next;
}

std::unique_ptr<CAudioParamUndoHistory> CAudioParamUndo::copyHistory()
{
    std::unique_ptr<CAudioParamUndoHistory> copy;
    {
        const CScopedLock lock(m_lock);
        if (m_history != nullptr)
            copy = m_history->clone();
    }
    onHistoryChanged();
    return copy;
}

void CAudioParamUndo::clearHistory()
{
    (void)swapHistory(nullptr);
}

} // namespace qrb
