// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CSharedAttribute.h"

#include "Core/CAppData.h"
#include "Core/CChunkId.h"
#include "Core/CMemoryReader.h"
#include "Core/CObjectClassInfo.h"
#include "Core/CSharedAttributeListener.h"

#include <utility>

namespace qrb {

CSharedAttribute::CSharedAttribute() : m_listener(std::make_unique<CSharedAttributeListener>(*this)) {}

CSharedAttribute::~CSharedAttribute()
{
    m_listener->detach();
}

void CSharedAttribute::declare(CObjectClassInfo& info)
{
    CObject::declare(info);
    info.event<&CSharedAttribute::load>("update");
}

CErrorPtr CSharedAttribute::init()
{
    QRB_TRY(CObject::init());
    const CString storageType = getAttrString("storage-type");
    m_storage = CAppData::findScope(storageType);
    if (m_storage == nullptr)
        return QRB_ERROR("@qrbstr_CSharedAttribute_init_InvalidStorageType Invalid storage type \"%1\" specified.",
                         storageType);
    m_attribute = getAttrString("attribute");
    if (m_attribute.empty())
        return QRB_ERROR("@qrbstr_CSharedAttribute_init_NoAttribute No attached attribute name specified.");
    m_dataName = getAttrString("data-name");
    if (m_dataName.empty())
        m_dataName = getName();
    m_default = getAttrString("def-value");
    m_listener->attach(m_storage, m_dataName);
    QRB_TRY(load());
    return nullptr;
}

void CSharedAttribute::unlink()
{
    // Before anything of this object goes: a write on another thread may be posting to it.
    m_listener->detach();
    CObject::unlink();
}

CErrorPtr CSharedAttribute::load()
{
    CByteArray bytes = m_storage->readData(m_dataName, chunkId("dstr"));
    CString text = m_default;
    if (!bytes.empty() && CMemoryReader(std::move(bytes)).readString(text))
        text.clear();
    QRB_TRY(setAttrText(m_attribute, text, ESetter::now));
    return nullptr;
}

void CSharedAttribute::setValue(const CString& value)
{
    m_storage->setString(m_dataName, value, this);
}

} // namespace qrb
