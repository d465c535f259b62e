// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParam.h"
#include "Audio/CAudioParamCells.h"
#include "Audio/CAudioParamCollector.h"
#include "Core/CLog.h"

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
        resetAll(guard, nullptr, route);
    } else if (element < 0) {
        // The template stands for group 0; a group of its own it has none, and without defaults nothing could be filled.
        const bool isFirst = from == EResetFrom::firstElement || group == kAudioParamTemplateGroup;
        replaceGroup(group, m_reset, isFirst ? 0 : group, guard, nullptr, route);
    } else {
        resetElement({.group = group, .element = element}, from, guard, nullptr, route);
    }
}

void CAudioParam::resetPlace(const CLoadPlace& place, const void* source, const CAudioParamRoute& route)
{
    const CAudioParamGuard guard(m_collector);
    if (!isBound() || !isPlaceSeen(place))
        return;
    if (place.group < 0)
        resetAll(guard, source, route);
    else if (place.element < 0)
        replaceGroup(place.group, m_reset, place.group == kAudioParamTemplateGroup ? 0 : place.group, guard, source,
                     route);
    else
        resetElement(place, EResetFrom::samePlace, guard, source, route);
}

void CAudioParam::resetAll(const CAudioParamGuard& guard, const void* source, const CAudioParamRoute& route)
{
    const std::int32_t groups = std::max(m_reset.groupCount(), m_edit.groupCount());
    for (std::int32_t g = 0; g < groups; ++g)
        replaceGroup(g, m_reset, g, guard, source, route);
}

void CAudioParam::resetElement(const CLoadPlace& place, EResetFrom from, const CAudioParamGuard& guard,
                               const void* source, const CAudioParamRoute& route)
{
    const bool isFirst = from == EResetFrom::firstElement;
    const std::size_t size = static_cast<std::size_t>(m_reset.format().elementSize);
    const std::size_t cell = (isFirst ? 0 : static_cast<std::size_t>(place.element)) * size;
    const std::span<const double> cells = m_reset.cells(isFirst ? 0 : place.group);
    const bool isThere = cells.size() >= size && cell <= cells.size() - size;
    const std::span<const double> value = isThere ? cells.subspan(cell, size) : m_reset.defaultElement(place.element);
    if (place.group != kAudioParamTemplateGroup || place.element == 0)
        copyElement(place.group, place.element, m_reset, value, place.isToEnd, guard, source, route);
    else if (place.element == defaultCount())
        growTemplate(m_reset, value, place.isToEnd, guard, source, route);
    else
        logFormat("Unexpected Element %i (expected %i), param '%s'.", place.element, defaultCount(),
                  path().toUtf8().c_str());
}

bool CAudioParam::isPlaceSeen(const CLoadPlace& place) const
{
    return !m_edit.format().isSingleGroup || place.group <= 0 || place.group == kAudioParamTemplateGroup;
}

std::int32_t CAudioParam::defaultCount() const
{
    return static_cast<std::int32_t>(m_edit.defaultCells().size()) / m_edit.format().elementSize;
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

} // namespace qrb
