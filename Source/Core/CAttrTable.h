// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CArray.h"
#include "Core/CAttrSetter.h"
#include "Core/CObjectAttr.h"
#include "Core/CTextRef.h"

#include <cstddef>
#include <cstdint>
#include <utility>

namespace qrb {

class CString;

/// The attributes of one object. Entries are never removed, so an index stays what it is; pointers do not survive an
/// insertion. Found by comparing 32-bit hashes in a row, then the text: objects have a few dozen attributes at most.
class CAttrTable {
public:
    struct CEntry {
        CEntry(CTextRef&& entryName, CObjectAttr&& entryValue, CAttrSetter entrySetter)
            : name(std::move(entryName)), value(std::move(entryValue)), setter(entrySetter)
        {
        }

        CTextRef name;
        CObjectAttr value;
        CAttrSetter setter = nullptr;
        bool isQueued = false;    ///< waits in the pending list
        bool isNotifying = false; ///< bound objects are being told; a change that comes back ends here
    };

    static constexpr std::size_t npos = static_cast<std::size_t>(-1);

    [[nodiscard]] std::size_t find(std::uint32_t hash, const CString& name) const
    {
        return (m_present & presentBit(hash)) != 0 ? search(hash, name) : npos;
    }
    /// Adds an attribute that is not there yet and gives its index.
    std::size_t append(std::uint32_t hash, CTextRef&& name, CObjectAttr&& value, CAttrSetter setter)
    {
        m_present |= presentBit(hash);
        m_hashes.append(hash);
        m_entries.emplace(std::move(name), std::move(value), setter);
        return m_hashes.size() - 1;
    }
    /// Makes room for `count` attributes more.
    void reserveMore(std::size_t count);

    [[nodiscard]] std::size_t size() const { return m_hashes.size(); }
    [[nodiscard]] CEntry& operator[](std::size_t index) { return m_entries[index]; }
    [[nodiscard]] const CEntry& operator[](std::size_t index) const { return m_entries[index]; }

private:
    [[nodiscard]] static std::uint64_t presentBit(std::uint32_t hash) { return std::uint64_t{1} << (hash & 63); }
    [[nodiscard]] std::size_t search(std::uint32_t hash, const CString& name) const;

    std::uint64_t m_present = 0; ///< a bit for each hash, so that most searches for what is not there need no look
    CArray<std::uint32_t, 0> m_hashes;
    CArray<CEntry, 0> m_entries;
};

} // namespace qrb
