// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CArray.h"
#include "Core/CObject.h"
#include "Core/CQrbStdAllocator.h"

namespace qrb {

class CAudioParamAllocDef;
class CAudioParamDef;
class CAudioParamFilterDef;
class CAudioParamRemapDef;
class CAudioParamSharedStorage;

/// What a definition declares about parameters, sorted by class. Read-only once built. Thread: any, then.
class CAudioProcessDefBaseInit : public CObject {
public:
    /// A declaration and its name relative to the process: "." and the object's name, or ".group.name".
    template <class T>
    struct CEntry {
        CString name;
        const T* object;
    };

    [[nodiscard]] CErrorPtr initChilds() override;

    /// By allocation index.
    [[nodiscard]] const CMap<int, const CAudioParamAllocDef*>& paramAllocs() const { return m_paramAllocs; }
    [[nodiscard]] std::span<const CEntry<CAudioParamRemapDef>> paramRemaps() const { return m_paramRemaps.span(); }
    [[nodiscard]] std::span<const CEntry<CAudioParamSharedStorage>> sharedStorages() const
    {
        return m_sharedStorages.span();
    }
    [[nodiscard]] std::span<const CEntry<CAudioParamFilterDef>> paramFilters() const { return m_paramFilters.span(); }
    [[nodiscard]] std::span<const CEntry<CAudioParamDef>> params() const { return m_params.span(); }

private:
    void sortChild(const CObject& child, const CString& prefix);

    CMap<int, const CAudioParamAllocDef*> m_paramAllocs;
    CArray<CEntry<CAudioParamRemapDef>> m_paramRemaps;
    CArray<CEntry<CAudioParamSharedStorage>> m_sharedStorages;
    CArray<CEntry<CAudioParamFilterDef>> m_paramFilters;
    CArray<CEntry<CAudioParamDef>> m_params;
};

} // namespace qrb
