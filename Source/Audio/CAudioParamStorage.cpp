// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParamStorage.h"

#include "Audio/CAudioParamCells.h"
#include "Audio/CAudioParamInfo.h"
#include "Audio/CAudioParamUpdate.h"
#include "Audio/CAudioParamUpdateRecord.h"

#include <algorithm>
#include <utility>

namespace qrb {

void CAudioParamStorage::setFormat(const CAudioParamFormat& format)
{
    m_format = format;
    m_groups.clear();
    m_defaults.clear();
    m_data.clear();
    m_hasData = false;
}

std::int32_t CAudioParamStorage::elementCount(std::int32_t group) const
{
    return static_cast<std::int32_t>(cells(m_format.isSingleGroup ? 0 : group).size() / elementSize());
}

double CAudioParamStorage::value(std::int32_t group, std::int32_t element, std::int32_t component,
                                 double fallback) const
{
    if (!m_hasData || component < 0 || component >= m_format.elementSize)
        return fallback;
    const std::size_t place = static_cast<std::size_t>(component);
    const std::span<const double> found = cells(m_format.isSingleGroup ? 0 : group);
    const std::int32_t row = m_format.isSingleElement ? 0 : element;
    if (row >= 0 && static_cast<std::size_t>(row) < found.size() / elementSize())
        return found[static_cast<std::size_t>(row) * elementSize() + place];
    const std::span<const double> missing = defaultElement(row);
    return missing.empty() ? fallback : missing[place];
}

double CAudioParamStorage::keyAt(std::int32_t group, std::int32_t element) const
{
    return m_format.hasItems() ? value(group, element) : 0.0;
}

const CString& CAudioParamStorage::text(std::int32_t group, std::int32_t element) const
{
    return m_data.text(audioParamKey(keyAt(group, element)));
}

std::span<const std::uint8_t> CAudioParamStorage::raw(std::int32_t group, std::int32_t element) const
{
    return m_data.raw(audioParamKey(keyAt(group, element)));
}

std::span<const double> CAudioParamStorage::cells(std::int32_t group) const
{
    if (group < 0 || static_cast<std::size_t>(group) >= m_groups.size())
        return {};
    return m_groups[static_cast<std::size_t>(group)].span();
}

std::span<const double> CAudioParamStorage::defaultElement(std::int32_t element) const
{
    if (m_defaults.size() < elementSize())
        return {};
    const bool isListed = element > 0 && static_cast<std::size_t>(element) < m_defaults.size() / elementSize();
    return m_defaults.span().subspan(isListed ? static_cast<std::size_t>(element) * elementSize() : 0, elementSize());
}

CAudioParamUpdate CAudioParamStorage::wholeGroup(std::int32_t group, std::int32_t asGroup) const
{
    const std::span<const double> found = cells(group);
    CAudioParamUpdate update;
    update.group = asGroup;
    update.elementCount = static_cast<std::int32_t>(found.size() / elementSize());
    update.isToEnd = true;
    update.format = m_format;
    update.values = found.data();
    update.data = &m_data;
    return update;
}

bool CAudioParamStorage::apply(const CAudioParamUpdate& update)
{
    return applyWith(update, nullptr);
}

bool CAudioParamStorage::applyOwned(CAudioParamUpdateRecord& record)
{
    return applyWith(record.m_update, &record);
}

bool CAudioParamStorage::applyWith(const CAudioParamUpdate& update, CAudioParamUpdateRecord* owner)
{
    if (!update.isValid())
        return false;
    if (update.isTemplate())
        takeTemplate(update, owner);
    else if (!m_hasData || update.format != m_format)
        return false;
    applyCells(update, owner);
    return true;
}

void CAudioParamStorage::takeTemplate(const CAudioParamUpdate& update, CAudioParamUpdateRecord* owner)
{
    if (update.format != m_format) {
        if (owner != nullptr)
            std::swap(owner->m_replaced, m_data);
        setFormat(update.format);
    }
    m_hasData = true;
    if (m_format.hasItems())
        dropItems(m_defaults.span(), owner);
    if (owner != nullptr) {
        std::swap(m_defaults, owner->m_defaults);
    } else {
        m_defaults.clear();
        m_defaults.appendAll(update.cells());
    }
    if (m_format.hasItems())
        for (double& key : m_defaults)
            key = takeItem(key, update, owner);
}

void CAudioParamStorage::applyCells(const CAudioParamUpdate& update, CAudioParamUpdateRecord* owner)
{
    const std::size_t group = static_cast<std::size_t>(update.storageGroup());
    makeGroup(group, owner);
    CCells& cells = m_groups[group];
    const std::size_t first = static_cast<std::size_t>(update.firstElement) * elementSize();
    const std::size_t end = first + update.cellCount();
    makeRoom(cells, end, owner);
    if (first > cells.size())
        fillGap(cells, first);
    if (m_format.hasItems()) {
        const std::size_t dropEnd = update.isToEnd ? cells.size() : std::min(end, cells.size());
        dropItems(cells.span().subspan(first, dropEnd - first), owner);
    }
    if (end > cells.size() || update.isToEnd)
        cells.resize(end);
    if (!m_format.hasItems()) {
        std::copy_n(update.cells().begin(), end - first, cells.begin() + first);
        return;
    }
    for (std::size_t i = first; i < end; ++i)
        cells[i] = takeItem(update.values[i - first], update, owner);
}

void CAudioParamStorage::makeGroup(std::size_t group, CAudioParamUpdateRecord* owner)
{
    if (group < m_groups.size())
        return;
    if (owner != nullptr && m_groups.capacity() <= group && owner->m_groupRoom.capacity() > group) {
        for (CCells& cells : m_groups)
            owner->m_groupRoom.append(std::move(cells));
        std::swap(m_groups, owner->m_groupRoom);
    }
    m_groups.resize(group + 1);
}

void CAudioParamStorage::makeRoom(CCells& cells, std::size_t count, CAudioParamUpdateRecord* owner)
{
    if (owner == nullptr || cells.capacity() >= count || owner->m_room.capacity() < count)
        return;
    owner->m_room.clear();
    owner->m_room.appendAll(cells.span());
    std::swap(cells, owner->m_room);
}

void CAudioParamStorage::fillGap(CCells& cells, std::size_t cellCount)
{
    while (cells.size() < cellCount) {
        const std::span<const double> element = defaultElement(static_cast<std::int32_t>(cells.size() / elementSize()));
        for (std::size_t component = 0; component < elementSize(); ++component) {
            const double cell = element.empty() ? 0.0 : element[component];
            cells.append(m_format.hasItems() ? double(m_data.addCopy(&m_data, audioParamKey(cell), m_format.type))
                                             : cell);
        }
    }
}

void CAudioParamStorage::dropItems(std::span<const double> keys, CAudioParamUpdateRecord* owner)
{
    for (const double key : keys) {
        if (owner != nullptr)
            owner->m_replaced.adopt(m_data, audioParamKey(key));
        else
            m_data.remove(audioParamKey(key));
    }
}

double CAudioParamStorage::takeItem(double key, const CAudioParamUpdate& update, CAudioParamUpdateRecord* owner)
{
    if (owner != nullptr)
        return m_data.adopt(owner->m_data, audioParamKey(key));
    return m_data.addCopy(update.data, audioParamKey(key), m_format.type);
}

void CAudioParamStorage::adoptDefaults()
{
    if (m_format.hasItems())
        dropItems(m_defaults.span(), nullptr);
    m_defaults.clear();
    m_defaults.appendAll(cells(0));
    if (m_format.hasItems())
        for (double& key : m_defaults)
            key = m_data.addCopy(&m_data, audioParamKey(key), m_format.type);
    m_hasData = true;
}

void CAudioParamStorage::clamp(const CAudioParamInfo& info)
{
    if (m_format.hasItems())
        return;
    for (CCells& cells : m_groups) {
        for (std::size_t i = 0; i < cells.size(); ++i) {
            const std::int32_t component = static_cast<std::int32_t>(i % elementSize());
            const double value = info.finite(static_cast<std::int32_t>(i / elementSize()), component, cells[i]);
            cells[i] = info.clamped(component, value);
        }
    }
}

} // namespace qrb
