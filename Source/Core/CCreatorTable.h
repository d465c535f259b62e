// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CCheckedObject.h"
#include "Core/CError.h"
#include "Core/CHashMap.h"
#include "Core/CString.h"
#include "Core/CTextRef.h"

#include <memory>
#include <span>

namespace qrb {

class CObject;
class CObjectClassInfo;

/// One row of an area's list of creators.
struct CCreatorRow {
    const char* tag;
    CObject* (*create)();
    void (*declare)(CObjectClassInfo& info);
};

/// The row that makes objects of class T for a tag.
template <class T>
[[nodiscard]] constexpr CCreatorRow creatorRow(const char* tag)
{
    return {tag, []() -> CObject* { return new T; }, &T::declare};
}

/// Tag to class. Filled at module entry, read-only afterwards. Thread: any, once filled.
class CCreatorTable : public CCheckedObject {
public:
    struct CCreator {
        CObject* (*create)() = nullptr;
        std::unique_ptr<CObjectClassInfo> classInfo;
    };

    CCreatorTable();
    ~CCreatorTable() override;

    /// Enters a tag and lets its class declare itself. A second row for a tag is an error.
    [[nodiscard]] CErrorPtr registerCreator(const CCreatorRow& row);
    [[nodiscard]] CErrorPtr registerCreators(std::span<const CCreatorRow> rows);

    /// The creator of a tag, or null.
    [[nodiscard]] const CCreator* find(const CString& tag) const;
    /// The class info of a plain object.
    [[nodiscard]] const CObjectClassInfo& baseInfo() const { return *m_baseInfo; }
    /// The name of the attribute that every object has.
    [[nodiscard]] const CTextRecord& fullNameKey() const { return *m_fullNameKey.record(); }

private:
    std::unique_ptr<CObjectClassInfo> m_baseInfo;
    CTextRef m_fullNameKey;
    CHashMap<CString, CCreator> m_creators;
};

} // namespace qrb
