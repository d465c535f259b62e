// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioParamDataItem.h"
#include "Core/CCheckedObject.h"
#include "Core/CQrbStdAllocator.h"
#include "Core/CString.h"

#include <cstdint>
#include <memory>
#include <span>

namespace qrb {

/// Item table: texts and byte blocks under the integer keys that stand in the cells of a storage or record.
/// A key is referred to by one cell only; copying a value between tables duplicates the item under a new key.
class CAudioParamData : public CCheckedObject {
public:
    CAudioParamData() = default;
    /// Duplicates all items under their keys.
    CAudioParamData(const CAudioParamData& other);
    CAudioParamData& operator=(const CAudioParamData& other);
    CAudioParamData(CAudioParamData&&) = default;
    CAudioParamData& operator=(CAudioParamData&&) = default;
    ~CAudioParamData() override = default;

    /// Takes an item under the next key and returns that key.
    std::int32_t add(std::unique_ptr<CAudioParamDataItem> item);
    std::int32_t addText(const CString& text);
    std::int32_t addRaw(std::span<const std::uint8_t> bytes);
    /// Duplicates the item of `from` under a new key here; an absent one becomes an empty item of `type`.
    std::int32_t addCopy(const CAudioParamData* from, std::int32_t key, EAudioParamType type);
    /// Moves the item of `from` under a new key here without an allocation; 0, which no item has, if it is absent.
    std::int32_t adopt(CAudioParamData& from, std::int32_t key);
    void remove(std::int32_t key);
    void clear();

    [[nodiscard]] const CAudioParamDataItem* find(std::int32_t key) const;
    /// The text of a key; empty if it is absent or no text.
    [[nodiscard]] const CString& text(std::int32_t key) const;
    /// The bytes of a key; empty if it is absent or no byte block.
    [[nodiscard]] std::span<const std::uint8_t> raw(std::int32_t key) const;
    [[nodiscard]] std::size_t size() const { return m_items.size(); }

    /// Count, then key, type and body of each item in the order of keys.
    CErrorPtr save(COutputStream& out) const;
    /// Replaces the content; it stays as it was on failure.
    CErrorPtr load(CInputStream& in);

private:
    using CItems = CMap<std::int32_t, std::unique_ptr<CAudioParamDataItem>>;

    [[nodiscard]] std::int32_t nextKey();

    CItems m_items;
    std::int32_t m_lastKey = 0;
};

} // namespace qrb
