// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParamUpdateRecord.h"

#include "Audio/CAudioParamCells.h"

#include <algorithm>
#include <utility>

namespace qrb {

void CAudioParamUpdateRecord::copyCells(CCells& to, const CAudioParamUpdate& update)
{
    to.clear();
    to.appendAll(update.cells());
    if (update.format.hasItems())
        for (double& key : to)
            key = m_data.addCopy(update.data, audioParamKey(key), update.format.type);
}

void CAudioParamUpdateRecord::pointToOwn()
{
    m_update.values = m_values.data();
    m_update.data = &m_data;
    m_update.elementCount =
        static_cast<std::int32_t>(m_values.size() / static_cast<std::size_t>(m_update.format.elementSize));
}

void CAudioParamUpdateRecord::set(CAudioParam* param, CAudioParamQueueAnchor* anchor, const CAudioParamUpdate& update)
{
    m_param = param;
    m_anchor = anchor;
    m_update = update;
    copyCells(m_values, update);
    m_defaults.clear();
    if (update.isTemplate())
        copyCells(m_defaults, update);
    pointToOwn();
}

void CAudioParamUpdateRecord::prepareRoom(std::size_t cellCount, std::size_t groupCount)
{
    m_room.clear();
    m_room.reserve(cellCount);
    m_groupRoom.clear();
    m_groupRoom.reserve(groupCount);
}

bool CAudioParamUpdateRecord::touches(const CAudioParamUpdateRecord& other) const
{
    return m_update.firstElement <= other.m_update.endElement() && other.m_update.firstElement <= m_update.endElement();
}

bool CAudioParamUpdateRecord::isCoveredBy(const CAudioParamUpdateRecord& later) const
{
    const CAudioParamUpdate& next = later.m_update;
    if (next.storageGroup() != m_update.storageGroup() || (m_update.isTemplate() && !next.isTemplate()))
        return false;
    const bool isEndCovered = next.isToEnd || (!m_update.isToEnd && m_update.endElement() <= next.endElement());
    return next.firstElement <= m_update.firstElement && isEndCovered;
}

void CAudioParamUpdateRecord::merge(CAudioParamUpdateRecord& later)
{
    const CAudioParamUpdate& next = later.m_update;
    const std::size_t size = static_cast<std::size_t>(m_update.format.elementSize);
    const std::int32_t first = std::min(m_update.firstElement, next.firstElement);
    const std::int32_t end = next.isToEnd ? next.endElement() : std::max(m_update.endElement(), next.endElement());
    const auto cellOf = [size](std::int32_t element) { return static_cast<std::size_t>(element) * size; };

    CCells values;
    values.resize(cellOf(end - first));
    const bool isItems = m_update.format.hasItems();
    for (std::size_t i = 0; i < m_values.size(); ++i) {
        const std::size_t cell = cellOf(m_update.firstElement) + i;
        const bool isReplaced = cell >= cellOf(next.firstElement) && (next.isToEnd || cell < cellOf(next.endElement()));
        if (!isReplaced)
            values[cell - cellOf(first)] = m_values[i];
        else if (isItems)
            m_data.remove(audioParamKey(m_values[i]));
    }
    for (std::size_t i = 0; i < later.m_values.size(); ++i) {
        const double cell = later.m_values[i];
        values[cellOf(next.firstElement - first) + i] =
            isItems ? double(m_data.adopt(later.m_data, audioParamKey(cell))) : cell;
    }
    m_values = std::move(values);
    m_update.firstElement = first;
    m_update.isToEnd = m_update.isToEnd || next.isToEnd;
    m_update.source = next.source;
    takeRoom(later);
    pointToOwn();
}

void CAudioParamUpdateRecord::takeRoom(CAudioParamUpdateRecord& other)
{
    if (other.m_room.capacity() > m_room.capacity())
        std::swap(m_room, other.m_room);
    if (other.m_groupRoom.capacity() > m_groupRoom.capacity())
        std::swap(m_groupRoom, other.m_groupRoom);
}

void CAudioParamUpdateRecord::recycle()
{
    m_data.clear();
    m_replaced.clear();
    m_room = {};
    m_groupRoom = {};
    m_defaults = {};
    m_values.clear();
    if (m_values.capacity() > kKeptCells)
        m_values = {};
}

bool CAudioParamUpdateRecord::isPlain() const
{
    constexpr std::size_t kInline = 2;
    return m_data.size() == 0 && m_replaced.size() == 0 && m_room.capacity() <= kInline &&
           m_groupRoom.capacity() <= 1 && m_groupRoom.empty() && m_defaults.capacity() <= kInline &&
           m_values.capacity() <= kKeptCells;
}

} // namespace qrb
