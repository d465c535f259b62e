// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParam.h"
#include "Audio/CAudioParamCells.h"
#include "Audio/CAudioParamCollector.h"
#include "Audio/Presets/CAudioParamUndoEntry.h"
#include "Core/CLog.h"
#include "Core/CMemoryReaderStatic.h"
#include "Core/COutputStream.h"

#include <algorithm>

namespace qrb {

bool CAudioParam::setValue(double value, const void* source, const CAudioParamRoute& route)
{
    return setElement(0, 0, value, source, route);
}

bool CAudioParam::setElement(std::int32_t group, std::int32_t element, double value, const void* source,
                             const CAudioParamRoute& route)
{
    return setElement(group, element, {&value, 1}, source, route);
}

bool CAudioParam::setElement(std::int32_t group, std::int32_t element, std::span<const double> components,
                             const void* source, const CAudioParamRoute& route)
{
    const CAudioParamInfo* const info = this->info();
    if (info == nullptr || info->format.hasItems() ||
        components.size() != static_cast<std::size_t>(info->format.elementSize))
        return false;
    CAudioParamUpdate record;
    record.group = group;
    record.firstElement = element;
    record.elementCount = 1;
    record.source = source;
    record.format = info->format;
    record.values = components.data();
    return update(record, route);
}

bool CAudioParam::trySetElement(std::int32_t group, std::int32_t element, double value, const void* source)
{
    const CAudioParamGuard guard(m_collector, EAudioParamWait::tryOnly);
    if (!guard.isHeld())
        return false;
    const CAudioParamInfo* const info = this->info();
    if (info == nullptr || info->format.elementSize != 1 || info->format.hasItems())
        return true;
    CAudioParamUpdate record;
    record.group = group;
    record.firstElement = element;
    record.elementCount = 1;
    record.source = source;
    record.format = info->format;
    record.values = &value;
    updateHeld(record, guard, {});
    return true;
}

bool CAudioParam::setString(std::int32_t group, std::int32_t element, const CString& text, const void* source,
                            const CAudioParamRoute& route)
{
    CAudioParamData data;
    const std::int32_t key = data.addText(text);
    return setItem(EAudioParamType::text, group, element, data, key, source, route);
}

bool CAudioParam::setRaw(std::int32_t group, std::int32_t element, std::span<const std::uint8_t> bytes,
                         const void* source, const CAudioParamRoute& route)
{
    CAudioParamData data;
    const std::int32_t key = data.addRaw(bytes);
    return setItem(EAudioParamType::raw, group, element, data, key, source, route);
}

bool CAudioParam::setItem(EAudioParamType type, std::int32_t group, std::int32_t element, const CAudioParamData& data,
                          std::int32_t key, const void* source, const CAudioParamRoute& route)
{
    const CAudioParamInfo* const info = this->info();
    if (info == nullptr || info->format.type != type)
        return false;
    const double cell = key;
    CAudioParamUpdate record;
    record.group = group;
    record.firstElement = element;
    record.elementCount = 1;
    record.source = source;
    record.format = info->format;
    record.values = &cell;
    record.data = &data;
    return update(record, route);
}

const CAudioParamStorage& CAudioParam::editStorage(const CAudioParamGuard&) const
{
    return m_edit;
}

const CAudioParamStorage& CAudioParam::resetStorage(const CAudioParamGuard&) const
{
    return m_reset;
}

double CAudioParam::value(std::int32_t group, std::int32_t element, std::int32_t component, double fallback) const
{
    const CAudioParamGuard guard(m_collector);
    return m_edit.value(group, element, component, fallback);
}

CString CAudioParam::text(std::int32_t group, std::int32_t element) const
{
    const CAudioParamGuard guard(m_collector);
    return m_edit.text(group, element);
}

void CAudioParam::resetValues(std::int32_t group, std::int32_t element, EResetFrom from, const CAudioParamRoute& route)
{
    const CAudioParamGuard guard(m_collector);
    if (!isBound())
        return;
    if (group < 0) {
        const std::int32_t groups = std::max(m_reset.groupCount(), m_edit.groupCount());
        for (std::int32_t g = 0; g < groups; ++g)
            replaceGroup(g, m_reset, g, guard, nullptr, route);
    } else if (element < 0) {
        // The template stands for group 0; a group of its own it has none, and without defaults nothing could be filled.
        const bool isFirst = from == EResetFrom::firstElement || group == kAudioParamTemplateGroup;
        replaceGroup(group, m_reset, isFirst ? 0 : group, guard, nullptr, route);
    } else {
        resetElement(group, element, from, guard, route);
    }
}

void CAudioParam::resetElement(std::int32_t group, std::int32_t element, EResetFrom from, const CAudioParamGuard& guard,
                               const CAudioParamRoute& route)
{
    const bool isFirst = from == EResetFrom::firstElement;
    const std::size_t size = static_cast<std::size_t>(m_reset.format().elementSize);
    const std::size_t place = (isFirst ? 0 : static_cast<std::size_t>(element)) * size;
    const std::span<const double> cells = m_reset.cells(isFirst ? 0 : group);
    const bool isThere = cells.size() >= size && place <= cells.size() - size;
    copyElement(group, element, m_reset, isThere ? cells.subspan(place, size) : m_reset.defaultElement(element), false,
                guard, nullptr, route);
}

void CAudioParam::replaceGroup(std::int32_t group, const CAudioParamStorage& from, std::int32_t fromGroup,
                               const CAudioParamGuard& guard, const void* source, const CAudioParamRoute& route)
{
    CAudioParamUpdate record = from.wholeGroup(fromGroup, group);
    record.source = source;
    updateHeld(record, guard, route);
}

void CAudioParam::copyElement(std::int32_t group, std::int32_t element, const CAudioParamStorage& from,
                              std::span<const double> cells, bool isToEnd, const CAudioParamGuard& guard,
                              const void* source, const CAudioParamRoute& route)
{
    if (cells.empty())
        return;
    CAudioParamUpdate record;
    record.group = group;
    record.firstElement = element;
    record.elementCount = 1;
    record.isToEnd = isToEnd;
    record.source = source;
    record.format = from.format();
    record.values = cells.data();
    record.data = &from.data();
    updateHeld(record, guard, route);
}

CErrorPtr CAudioParam::save(COutputStream& out, std::int32_t group) const
{
    const CAudioParamGuard guard(m_collector);
    const CAudioParamInfo* const info = this->info();
    QRB_TRY(out.writeString(info != nullptr ? info->definitionPath : path()));
    return m_edit.save(out, group);
}

CErrorPtr CAudioParam::load(std::span<const std::uint8_t> data, const CLoadPlace& place, const void* source,
                            const CAudioParamRoute& route)
{
    const CAudioParamGuard guard(m_collector);
    const CAudioParamInfo* const info = this->info();
    if (info == nullptr)
        return {};
    CMemoryReaderStatic in(data);
    CString name;
    QRB_TRY(in.readString(name));
    CAudioParamStorage values = place.isReset ? m_reset : m_edit;
    QRB_TRY(values.load(in));
    values.clamp(*info);
    if (place.isReset) {
        m_reset = std::move(values);
    } else if (place.group >= 0) {
        loadPart(values, place, guard, source, route);
    } else {
        loadAll(std::move(values), guard, source, route);
    }
    return {};
}

void CAudioParam::loadAll(CAudioParamStorage&& values, const CAudioParamGuard& guard, const void* source,
                          const CAudioParamRoute& route)
{
    const std::int32_t groups = std::max(values.groupCount(), m_edit.groupCount());
    CAudioParamUndoEntry* const undo = undoOf(route);
    for (std::int32_t g = 0; undo != nullptr && g < groups; ++g)
        undo->captureBefore(path(), g, m_edit, false);
    m_edit = std::move(values);
    for (std::int32_t g = 0; undo != nullptr && g < groups; ++g)
        undo->captureAfter(path(), g, m_edit, false);
    for (std::int32_t g = 0; g < groups; ++g) {
        CAudioParamUpdate record = m_edit.wholeGroup(g, g);
        record.source = source;
        afterEdit(record, guard, route);
    }
}

void CAudioParam::loadPart(const CAudioParamStorage& values, const CLoadPlace& place, const CAudioParamGuard& guard,
                           const void* source, const CAudioParamRoute& route)
{
    const std::size_t size = static_cast<std::size_t>(values.format().elementSize);
    const std::span<const double> cells = values.cells(0);
    if (cells.empty())
        return;
    if (place.element < 0) {
        replaceGroup(place.group, values, 0, guard, source, route);
        return;
    }
    if (place.group != kAudioParamTemplateGroup || place.element == 0) {
        copyElement(place.group, place.element, values, cells.first(size), place.isToEnd, guard, source, route);
        return;
    }
    const std::int32_t defaults = static_cast<std::int32_t>(m_edit.defaultCells().size() / size);
    if (place.element != defaults) {
        logFormat("Unexpected LoadElement %i (expected %i).", place.element, defaults);
        return;
    }
    growTemplate(values, place.isToEnd, guard, source, route);
}

void CAudioParam::growTemplate(const CAudioParamStorage& values, bool isToEnd, const CAudioParamGuard& guard,
                               const void* source, const CAudioParamRoute& route)
{
    const CAudioParamFormat& format = values.format();
    CArray<double, 8> cells;
    CAudioParamData items;
    const auto add = [&](std::span<const double> from, const CAudioParamData& data) {
        for (const double cell : from)
            cells.append(format.hasItems() ? double(items.addCopy(&data, audioParamKey(cell), format.type)) : cell);
    };
    add(m_edit.defaultCells(), m_edit.data());
    add(values.cells(0).first(static_cast<std::size_t>(format.elementSize)), values.data());
    CAudioParamUpdate record;
    record.group = kAudioParamTemplateGroup;
    record.elementCount = static_cast<std::int32_t>(cells.size()) / format.elementSize;
    record.isToEnd = isToEnd;
    record.source = source;
    record.format = format;
    record.values = cells.data();
    record.data = &items;
    updateHeld(record, guard, route);
}

} // namespace qrb
