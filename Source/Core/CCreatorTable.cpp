// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CCreatorTable.h"

#include "Core/CObject.h"
#include "Core/CObjectClassInfo.h"

#include <utility>

namespace qrb {

CCreatorTable::CCreatorTable() : m_baseInfo(new CObjectClassInfo), m_fullNameKey(CString("full-name"))
{
    CObject::declare(*m_baseInfo);
}

CCreatorTable::~CCreatorTable() = default;

CErrorPtr CCreatorTable::registerCreator(const CCreatorRow& row)
{
    if (find(row.tag) != nullptr)
        return QRB_ERROR("@qrbstr_CObject_registerCreator Creator for '%1' has already been registered.", row.tag);
    std::unique_ptr<CObjectClassInfo> info(new CObjectClassInfo);
    row.declare(*info);
    m_creators.emplace(CString(row.tag), CCreator{row.create, std::move(info)});
    return {};
}

CErrorPtr CCreatorTable::registerCreators(std::span<const CCreatorRow> rows)
{
    for (const CCreatorRow& row : rows)
        QRB_TRY(registerCreator(row));
    return {};
}

const CCreatorTable::CCreator* CCreatorTable::find(const CString& tag) const
{
    const auto found = m_creators.find(tag);
    return found != m_creators.end() ? &found->second : nullptr;
}

} // namespace qrb
