// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CQrbStdAllocator.h"
#include "Core/CString.h"

#include <cstdint>

namespace qrb {

class CObject;

/// Children by base name and index. Names are "base" (index 0) or "base#index".
class CChildNames {
public:
    struct CName {
        CString base;
        std::uint32_t index = 0;
    };

    /// Splits a name; with anything but up to nine digits behind the "#" all of it is the base.
    [[nodiscard]] static CName split(const CString& name);

    /// Enters a child under the name, or under the highest index plus one if that index is taken. Gives the name it got.
    CName add(const CString& name, CObject& child);
    void remove(const CString& name, const CObject& child);
    /// "base": lowest index; "base#K": index K; "base#+K": K-th in order from 0; "base#-K": K-th from the last. Or null.
    [[nodiscard]] CObject* find(const CString& segment) const;

private:
    using Indexed = CMap<std::uint32_t, CObject*>;

    CMap<CString, Indexed> m_names;
};

} // namespace qrb
