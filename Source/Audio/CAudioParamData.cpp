// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParamData.h"

#include "Audio/CAudioParamDataItemRaw.h"
#include "Audio/CAudioParamDataItemString.h"
#include "Audio/CAudioParamFormat.h"
#include "Core/CInputStream.h"
#include "Core/COutputStream.h"

#include <limits>
#include <utility>

namespace qrb {

CAudioParamData::CAudioParamData(const CAudioParamData& other) : CCheckedObject(other), m_lastKey(other.m_lastKey)
{
    for (const auto& [key, item] : other.m_items)
        m_items.emplace_hint(m_items.end(), key, item->clone());
}

CAudioParamData& CAudioParamData::operator=(const CAudioParamData& other)
{
    return *this = CAudioParamData(other);
}

std::int32_t CAudioParamData::nextKey()
{
    // Keys are dense and small unless outside data says otherwise, so the search is not a walk in practice.
    do {
        m_lastKey = m_lastKey == std::numeric_limits<std::int32_t>::max() ? 1 : m_lastKey + 1;
    } while (m_items.find(m_lastKey) != m_items.end());
    return m_lastKey;
}

std::int32_t CAudioParamData::add(std::unique_ptr<CAudioParamDataItem> item)
{
    const std::int32_t key = nextKey();
    m_items.emplace(key, std::move(item));
    return key;
}

std::int32_t CAudioParamData::addText(const CString& text)
{
    return add(std::make_unique<CAudioParamDataItemString>(text));
}

std::int32_t CAudioParamData::addRaw(std::span<const std::uint8_t> bytes)
{
    return add(std::make_unique<CAudioParamDataItemRaw>(bytes));
}

std::int32_t CAudioParamData::addCopy(const CAudioParamData* from, std::int32_t key, EAudioParamType type)
{
    const CAudioParamDataItem* const item = from != nullptr ? from->find(key) : nullptr;
    return add(item != nullptr ? item->clone() : CAudioParamDataItem::make(type));
}

std::int32_t CAudioParamData::adopt(CAudioParamData& from, std::int32_t key)
{
    auto node = from.m_items.extract(key);
    if (node.empty())
        return 0;
    node.key() = nextKey();
    return m_items.insert(std::move(node)).position->first;
}

void CAudioParamData::remove(std::int32_t key)
{
    m_items.erase(key);
}

void CAudioParamData::clear()
{
    m_items.clear();
    m_lastKey = 0;
}

const CAudioParamDataItem* CAudioParamData::find(std::int32_t key) const
{
    const auto found = m_items.find(key);
    return found != m_items.end() ? found->second.get() : nullptr;
}

const CString& CAudioParamData::text(std::int32_t key) const
{
    static const CString kEmpty;
    const auto* const item = dynamic_cast<const CAudioParamDataItemString*>(find(key));
    return item != nullptr ? item->text() : kEmpty;
}

std::span<const std::uint8_t> CAudioParamData::raw(std::int32_t key) const
{
    const auto* const item = dynamic_cast<const CAudioParamDataItemRaw*>(find(key));
    return item != nullptr ? item->bytes() : std::span<const std::uint8_t>{};
}

CErrorPtr CAudioParamData::save(COutputStream& out) const
{
    QRB_TRY(out.writeInt32(static_cast<std::int32_t>(m_items.size())));
    for (const auto& [key, item] : m_items) {
        QRB_TRY(out.writeInt32(key));
        QRB_TRY(out.writeInt32(static_cast<std::int32_t>(item->getType())));
        QRB_TRY(item->save(out));
    }
    return {};
}

CErrorPtr CAudioParamData::load(CInputStream& in)
{
    std::int32_t count = 0;
    QRB_TRY(in.readInt32(count));
    // More than all cells could name would only be memory that a small chunk claims.
    if (count < 0 || count > kAudioParamMaxGroups * kAudioParamMaxElements)
        return QRB_ERROR("@qrbstr_CAudioParamData_load_Count Invalid data item count %1.", count);
    CAudioParamData loaded;
    for (std::int32_t i = 0; i < count; ++i) {
        std::int32_t key = 0;
        std::int32_t type = 0;
        QRB_TRY(in.readInt32(key));
        QRB_TRY(in.readInt32(type));
        std::unique_ptr<CAudioParamDataItem> item = CAudioParamDataItem::make(static_cast<EAudioParamType>(type));
        if (item == nullptr)
            return QRB_ERROR("@qrbstr_CAudioParamData_load_Type Invalid data item type %1.", type);
        QRB_TRY(item->load(in));
        loaded.m_items.insert_or_assign(key, std::move(item));
    }
    loaded.m_lastKey = loaded.m_items.empty() ? 0 : std::max(0, loaded.m_items.rbegin()->first);
    *this = std::move(loaded);
    return {};
}

} // namespace qrb
