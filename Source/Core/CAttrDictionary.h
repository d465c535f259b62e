// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CObjectAttr.h"
#include "Core/CQrbStdAllocator.h"
#include "Core/CString.h"

namespace qrb {

/// Ordered dictionary of named values: the arguments of an event, the attributes given to a new child.
class CAttrDictionary {
public:
    using Map = CMap<CString, CObjectAttr>;

    void set(const CString& name, const CObjectAttr& value);
    void remove(const CString& name);
    void clear() { m_values.clear(); }
    [[nodiscard]] bool has(const CString& name) const { return find(name) != nullptr; }
    [[nodiscard]] bool empty() const { return m_values.empty(); }
    [[nodiscard]] const CObjectAttr* find(const CString& name) const;

    [[nodiscard]] CString getString(const CString& name, const CString& def = {}) const;
    [[nodiscard]] bool getBool(const CString& name, bool def = false) const;
    [[nodiscard]] std::int32_t getInt(const CString& name, std::int32_t def = 0) const;
    [[nodiscard]] double getDouble(const CString& name, double def = 0.0) const;

    /// In the order of the names.
    [[nodiscard]] Map::const_iterator begin() const { return m_values.begin(); }
    [[nodiscard]] Map::const_iterator end() const { return m_values.end(); }

private:
    Map m_values;
};

using CEventArgs = CAttrDictionary;
using CAttrOverrides = CAttrDictionary;

} // namespace qrb
