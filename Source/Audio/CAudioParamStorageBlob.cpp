// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParamCells.h"
#include "Audio/CAudioParamStorage.h"
#include "Core/CInputStream.h"
#include "Core/COutputStream.h"

#include <utility>

namespace qrb {

//  int32 version | element size | type | group count | item table, unless numbers | groups
//  group: int32 element count | cells, components of an element side by side: doubles, or int32 keys of items
static constexpr std::int32_t kVersion = 1;

CErrorPtr CAudioParamStorage::save(COutputStream& out, std::int32_t group) const
{
    const std::int32_t firstGroup = group < 0 ? 0 : group;
    const std::int32_t endGroup = group < 0 ? groupCount() : group + 1;
    QRB_TRY(out.writeInt32(kVersion));
    QRB_TRY(out.writeInt32(m_format.elementSize));
    QRB_TRY(out.writeInt32(static_cast<std::int32_t>(m_format.type)));
    QRB_TRY(out.writeInt32(endGroup - firstGroup));
    if (m_format.hasItems())
        return saveItems(out, firstGroup, endGroup);
    for (std::int32_t g = firstGroup; g < endGroup; ++g) {
        QRB_TRY(out.writeInt32(static_cast<std::int32_t>(cells(g).size() / elementSize())));
        QRB_TRY(writeAudioParamCells(out, m_format.type, cells(g)));
    }
    return {};
}

CErrorPtr CAudioParamStorage::saveItems(COutputStream& out, std::int32_t firstGroup, std::int32_t endGroup) const
{
    // A table of its own, so that the keys run 1, 2, 3 in the order of the cells.
    CAudioParamData items;
    for (std::int32_t g = firstGroup; g < endGroup; ++g)
        for (const double key : cells(g))
            items.addCopy(&m_data, audioParamKey(key), m_format.type);
    QRB_TRY(items.save(out));
    std::int32_t lastKey = 0;
    for (std::int32_t g = firstGroup; g < endGroup; ++g) {
        QRB_TRY(out.writeInt32(static_cast<std::int32_t>(cells(g).size())));
        for (std::size_t i = 0; i < cells(g).size(); ++i)
            QRB_TRY(out.writeInt32(++lastKey));
    }
    return {};
}

CErrorPtr CAudioParamStorage::load(CInputStream& in)
{
    std::int32_t version = 0;
    std::int32_t size = 0;
    std::int32_t type = 0;
    std::int32_t groups = 0;
    QRB_TRY(in.readInt32(version));
    if (version != kVersion)
        return QRB_ERROR("@qrbstr_CAudioParamStorage_load_Version Unsupported data set version %1.", version);
    QRB_TRY(in.readInt32(size));
    QRB_TRY(in.readInt32(type));
    if (size != m_format.elementSize || type != static_cast<std::int32_t>(m_format.type))
        return QRB_ERROR(
            "@qrbstr_CAudioParamStorage_load_Format Unsupported storage format (esize=%1, dtype=%2; should "
            "be: esize=%3, dtype=%4).",
            size, type, m_format.elementSize, static_cast<std::int32_t>(m_format.type));
    QRB_TRY(in.readInt32(groups));
    if (groups < 0 || groups > kAudioParamMaxGroups)
        return QRB_ERROR("@qrbstr_CAudioParamStorage_load_Groups Invalid group count %1.", groups);
    CAudioParamData items;
    if (m_format.hasItems())
        QRB_TRY(items.load(in));
    CAudioParamStorage loaded;
    loaded.setFormat(m_format);
    for (std::int32_t g = 0; g < groups; ++g)
        QRB_TRY(loaded.loadGroup(in, loaded.m_groups.emplace(), items));
    takeValues(std::move(loaded));
    return {};
}

void CAudioParamStorage::takeValues(CAudioParamStorage&& from)
{
    from.m_defaults = std::move(m_defaults);
    if (m_format.hasItems())
        for (double& key : from.m_defaults)
            key = from.m_data.addCopy(&m_data, audioParamKey(key), m_format.type);
    from.m_hasData = true;
    *this = std::move(from);
}

CErrorPtr CAudioParamStorage::loadGroup(CInputStream& in, CCells& cells, CAudioParamData& items)
{
    std::int32_t count = 0;
    QRB_TRY(in.readInt32(count));
    if (count < 0 || count > kAudioParamMaxElements)
        return QRB_ERROR("@qrbstr_CAudioParamStorage_load_Elements Invalid element count %1.", count);
    CArray<double, 4> values;
    QRB_TRY(readAudioParamCells(in, m_format.type, static_cast<std::size_t>(count) * elementSize(), values));
    cells.appendAll(values.span());
    if (!m_format.hasItems())
        return {};
    for (double& key : cells) {
        const CAudioParamDataItem* const item = items.find(audioParamKey(key));
        const bool isUsable = item != nullptr && item->getType() == m_format.type;
        // Moved, not copied: a key belongs to one cell, and a large item named by many would take more memory than the
        // data justifies.
        key = isUsable ? m_data.adopt(items, audioParamKey(key)) : m_data.addCopy(nullptr, 0, m_format.type);
    }
    return {};
}

} // namespace qrb
