// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParam.h"

#include "Audio/CAudioParamCells.h"
#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioParamUpdateHolder.h"
#include "Audio/Presets/CAudioParamUndoEntry.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace qrb {

CAudioParam::CAudioParam(CAudioParamCollector& collector, const CString& path)
    : CAudioParamPathEntry(path), m_collector(collector)
{
}

bool CAudioParam::isBoundLike(const CAudioParamInfo& info) const
{
    const CAudioParamInfo* const bound = this->info();
    return bound == &info ||
           (bound != nullptr && bound->definitionPath == info.definitionPath && bound->format == info.format);
}

void CAudioParam::bindInfo(const CAudioParamInfo& info, const void* source, const CAudioParamRoute& route)
{
    // Looked at twice, so that nodes which come and go do not wait for whoever holds the parameters.
    if (isBoundLike(info))
        return;
    const CAudioParamGuard guard(m_collector);
    if (isBoundLike(info))
        return;
    m_info.store(&info, std::memory_order_release);
    // Another shape empties the audio storage, and its room goes with that.
    m_sentCells.clear();
    m_sentGroups = 1;
    for (std::int32_t group = 0; group < std::max(1, info.defaults.groupCount()); ++group) {
        CAudioParamUpdate record = info.defaults.wholeGroup(group, group == 0 ? kAudioParamTemplateGroup : group);
        record.source = source;
        updateHeld(record, guard, route);
        m_reset.apply(record);
    }
    m_collector.onBound();
}

bool CAudioParam::update(const CAudioParamUpdate& record, const CAudioParamRoute& route)
{
    const CAudioParamGuard guard(m_collector);
    return updateHeld(record, guard, route);
}

bool CAudioParam::update(const CAudioParamUpdate& record, const CAudioParamGuard& guard, const CAudioParamRoute& route)
{
    return updateHeld(record, guard, route);
}

bool CAudioParam::updateHeld(const CAudioParamUpdate& record, const CAudioParamGuard& guard,
                             const CAudioParamRoute& route)
{
    const CAudioParamInfo* const info = this->info();
    if (info == nullptr || !record.isValid() || record.format != info->format)
        return false;
    const bool isNumber = !record.format.hasItems();
    if (isNumber &&
        !std::all_of(record.cells().begin(), record.cells().end(), [](double v) { return std::isfinite(v); }))
        return updateFinite(record, guard, route);
    const std::size_t present = m_edit.cells(record.storageGroup()).size();
    const std::size_t first =
        static_cast<std::size_t>(record.firstElement) * static_cast<std::size_t>(record.format.elementSize);
    if (!record.isTemplate() && first > present)
        return updateWithGap(record, guard, route);
    CAudioParamUndoEntry* const undo = undoOf(route);
    if (undo != nullptr && record.isTemplate())
        undo->captureBefore(path(), record.group, m_edit, false);
    if (undo != nullptr)
        undo->captureBefore(path(), record.storageGroup(), m_edit, false);
    m_edit.apply(record);
    if (undo != nullptr && record.isTemplate())
        undo->captureAfter(path(), record.group, m_edit, false);
    if (undo != nullptr)
        undo->captureAfter(path(), record.storageGroup(), m_edit, false);
    afterEdit(record, guard, route);
    return true;
}

CAudioParamUndoEntry* CAudioParam::undoOf(const CAudioParamRoute& route) const
{
    const CAudioParamInfo* const info = this->info();
    return info != nullptr && (info->isStorable || info->isPersistent) ? route.undo : nullptr;
}

bool CAudioParam::updateFinite(const CAudioParamUpdate& record, const CAudioParamGuard& guard,
                               const CAudioParamRoute& route)
{
    CArray<double, 8> values(record.cells());
    for (std::size_t i = 0; i < values.size(); ++i) {
        const std::size_t size = static_cast<std::size_t>(record.format.elementSize);
        const std::int32_t element = record.firstElement + static_cast<std::int32_t>(i / size);
        values[i] = info()->finite(element, static_cast<std::int32_t>(i % size), values[i]);
    }
    CAudioParamUpdate finite = record;
    finite.values = values.data();
    return updateHeld(finite, guard, route);
}

bool CAudioParam::updateWithGap(const CAudioParamUpdate& record, const CAudioParamGuard& guard,
                                const CAudioParamRoute& route)
{
    const std::int32_t first = static_cast<std::int32_t>(m_edit.cells(record.group).size()) / record.format.elementSize;
    CAudioParamUpdateHolder holder;
    const auto add = [&](double cell, const CAudioParamData* from) {
        const EAudioParamType type = record.format.type;
        holder.values.append(record.format.hasItems() ? double(holder.data.addCopy(from, audioParamKey(cell), type))
                                                      : cell);
    };
    for (std::int32_t element = first; element < record.firstElement; ++element) {
        const std::span<const double> missing = m_edit.defaultElement(element);
        for (std::int32_t component = 0; component < record.format.elementSize; ++component)
            add(missing.empty() ? 0.0 : missing[static_cast<std::size_t>(component)], &m_edit.data());
    }
    for (const double cell : record.cells())
        add(cell, record.data);
    CAudioParamUpdate longer = record;
    longer.firstElement = first;
    longer.elementCount = record.endElement() - first;
    longer.values = holder.values.data();
    longer.data = &holder.data;
    return updateHeld(longer, guard, route);
}

void CAudioParam::afterEdit(const CAudioParamUpdate& record, const CAudioParamGuard& guard,
                            const CAudioParamRoute& route)
{
    send(record, guard, route);
    // Not on the audio thread: activating a preset takes its time.
    if (!guard.isAudio())
        m_collector.selectPreset(*this, record, route);
    tell(record, guard);
    runFilters(record, guard, route);
}

void CAudioParam::send(const CAudioParamUpdate& update, const CAudioParamGuard& guard, const CAudioParamRoute& route)
{
    CAudioParamUpdatePool& pool = m_collector.updatePool();
    CAudioParamUpdateRecord* const record = pool.take(guard.isAudio());
    record->set(this, &m_anchor, update);
    if (route.isImmediate) {
        applyToAudio(*record);
        pool.give(record);
        // An older change that still waits must not have the last word.
        if (m_collector.isWaiting(*this))
            send(update, guard, {});
        return;
    }
    prepareRoom(*record, route.deferredList != nullptr);
    if (route.deferredList != nullptr)
        route.deferredList->append(record);
    else
        m_collector.queue(record);
}

void CAudioParam::prepareRoom(CAudioParamUpdateRecord& record, bool isDeferred)
{
    constexpr std::size_t kInlineCells = 2;
    constexpr std::size_t kUsualGroups = 8;
    const CAudioParamUpdate& update = record.update();
    const std::size_t group = static_cast<std::size_t>(update.storageGroup());
    const std::size_t cells =
        static_cast<std::size_t>(update.endElement()) * static_cast<std::size_t>(update.format.elementSize);
    if (m_sentCells.size() <= group)
        m_sentCells.resize(group + 1);
    // A deferred change may overtake or be overtaken, so it relies on nothing that another one brings.
    const bool needsCells = cells > kInlineCells && (isDeferred || cells > m_sentCells[group]);
    const bool needsGroups = group >= 1 && (isDeferred || group >= m_sentGroups);
    const std::size_t groups = needsGroups ? std::max(group + 1, kUsualGroups) : 0;
    if (needsCells || needsGroups)
        record.prepareRoom(needsCells ? cells : 0, groups);
    if (isDeferred)
        return;
    m_sentCells[group] = std::max(m_sentCells[group], cells);
    m_sentGroups = std::max(m_sentGroups, groups);
}

void CAudioParam::tell(const CAudioParamUpdate& record, const CAudioParamGuard& guard)
{
    if (guard.isAudio())
        m_collector.deferChange({this, record.source, record.storageGroup(), record.firstElement, record.endElement()});
    else
        m_collector.tellListeners(*this, record);
}

void CAudioParam::applyToAudio(CAudioParamUpdateRecord& record)
{
    if (!m_audio.applyOwned(record))
        return;
    for (CAudioParamReader* reader = m_readers; reader != nullptr; reader = reader->m_next)
        reader->tell(record.update());
}

CAudioParamReader* CAudioParam::attachReader(const CAudioParamStorage*& outStorage, std::uint8_t* dirtyFlag,
                                             std::uint32_t* outMask, std::int32_t group, std::int32_t element)
{
    CAudioParamReader* const reader = m_collector.m_readerPool.take();
    if (m_collector.m_readerPool.isSpareUsed())
        m_collector.wakeDeferred();
    reader->m_dirtyFlag = dirtyFlag;
    reader->m_mask = outMask;
    reader->m_group = group;
    reader->m_element = element;
    reader->m_next = m_readers;
    if (m_readers != nullptr)
        m_readers->m_previous = reader;
    m_readers = reader;
    outStorage = &m_audio;
    *outMask = 0;
    const std::int32_t groups = m_audio.hasData() ? m_audio.groupCount() : 0;
    if (group == -1)
        *outMask = groups >= kAudioParamMaxGroups ? ~std::uint32_t{0} : audioParamGroupBit(groups) - 1;
    else if (group < groups)
        *outMask = audioParamGroupBit(group);
    return reader;
}

void CAudioParam::detachReader(CAudioParamReader* reader)
{
    if (reader == nullptr)
        return;
    (reader->m_previous != nullptr ? reader->m_previous->m_next : m_readers) = reader->m_next;
    if (reader->m_next != nullptr)
        reader->m_next->m_previous = reader->m_previous;
    m_collector.m_readerPool.give(reader);
}

} // namespace qrb
