// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParam.h"
#include "Audio/CAudioParamCells.h"
#include "Audio/CAudioParamCollector.h"
#include "Audio/Presets/CAudioParamUndoEntry.h"
#include "Core/CLog.h"
#include "Core/CMemoryReaderStatic.h"
#include "Core/COutputStream.h"

#include <algorithm>
#include <utility>

namespace qrb {

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
    CAudioParamStorage values;
    QRB_TRY(readSaved(data, *info, values));
    loadValues(std::move(values), place, source, route);
    return {};
}

CErrorPtr CAudioParam::readSaved(std::span<const std::uint8_t> data, const CAudioParamInfo& info,
                                 CAudioParamStorage& values)
{
    // Not a member of anything yet: the trace has no name.
    const auto fullName = [] { return CString(); };
    CMemoryReaderStatic in(data);
    CString name;
    QRB_TRY(in.readString(name));
    values.setFormat(info.format);
    QRB_TRY(values.load(in));
    values.clamp(info);
    return {};
}

void CAudioParam::loadValues(CAudioParamStorage&& values, const CLoadPlace& place, const void* source,
                             const CAudioParamRoute& route)
{
    const CAudioParamGuard guard(m_collector);
    if (!isBound() || values.format() != m_edit.format())
        return;
    if (place.isReset)
        m_reset.takeValues(std::move(values));
    else if (place.group < 0)
        loadAll(std::move(values), guard, source, route);
    else if (isPlaceSeen(place))
        loadPart(values, place, guard, source, route);
}

void CAudioParam::loadAll(CAudioParamStorage&& values, const CAudioParamGuard& guard, const void* source,
                          const CAudioParamRoute& route)
{
    const std::int32_t groups = std::max(values.groupCount(), m_edit.groupCount());
    CAudioParamUndoEntry* const undo = undoOf(route);
    for (std::int32_t g = 0; undo != nullptr && g < groups; ++g)
        undo->captureBefore(path(), g, m_edit, false);
    m_edit.takeValues(std::move(values));
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
    if (place.element == defaultCount())
        growTemplate(values, cells.first(size), place.isToEnd, guard, source, route);
    else
        logFormat("Unexpected LoadElement %i (expected %i).", place.element, defaultCount());
}

void CAudioParam::growTemplate(const CAudioParamStorage& from, std::span<const double> element, bool isToEnd,
                               const CAudioParamGuard& guard, const void* source, const CAudioParamRoute& route)
{
    const CAudioParamFormat& format = from.format();
    CArray<double, 8> cells;
    CAudioParamData items;
    const auto add = [&](std::span<const double> added, const CAudioParamData& data) {
        for (const double cell : added)
            cells.append(format.hasItems() ? double(items.addCopy(&data, audioParamKey(cell), format.type)) : cell);
    };
    add(m_edit.defaultCells(), m_edit.data());
    add(element, from.data());
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
