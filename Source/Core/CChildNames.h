// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CArray.h"
#include "Core/CHashMap.h"
#include "Core/CString.h"

#include <cstdint>

namespace qrb {

class CObject;

/// Children by base name and index. Names are "base" (index 0) or "base#index" with up to nine digits; with anything
/// else behind the "#", all of it is the base.
class CChildNames {
public:
    /// Enters a child under the name, or under the highest index plus one if that index is taken, and gives the name it
    /// got.
    CString add(const CString& name, CObject& child);
    void remove(const CString& name, const CObject& child);
    /// "base": lowest index; "base#K": index K; "base#+K": K-th in order from 0; "base#-K": K-th from the last. Or null.
    [[nodiscard]] CObject* find(const CString& segment) const;

private:
    struct CIndexed {
        std::uint32_t index;
        CObject* child;
    };
    using Indexed = CArray<CIndexed, 1>; ///< in the order of indices

    CHashMap<CString, Indexed> m_names;
};

} // namespace qrb
