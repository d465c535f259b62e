// SPDX-License-Identifier: GPL-3.0-or-later
// Attributes of an object: setting, setters, getters.
#include "Core/CAttrBindings.h"
#include "Core/CAttrExpansion.h"
#include "Core/CCreatorTable.h"
#include "Core/CObject.h"
#include "Core/CObjectClassInfo.h"
#include "Core/CProcessState.h"
#include "Core/CTextRecord.h"

#include <utility>

namespace qrb {

namespace {

constexpr int kMaxAnswers = 8; // bound objects that answer each other without end

bool isSame(const CObjectAttr& a, const CObjectAttr& b)
{
    return a.type() == b.type() && a.toDouble() == b.toDouble() && a.toString() == b.toString() &&
           a.toPointer() == b.toPointer();
}

} // namespace

CErrorPtr CObject::setAttr(const CString& name, const CString& value, ESetter setter)
{
    if (m_isReadOnly || name.empty())
        return {};
    CTextRef text(value);
    // Found only now: the expansion of a value may add attributes, but never this one.
    if (text->hasBrace)
        QRB_TRY(CAttrExpansion(*this, name).expand(text));
    QRB_TRY(storeText(findOrAddAttr(name), std::move(text), setter));
    return {};
}

CErrorPtr CObject::setAttrValue(const CString& name, const CObjectAttr& value, ESetter setter)
{
    if (value.type() == CObjectAttr::EType::string) {
        QRB_TRY(setAttr(name, value.textRef().text(), setter));
    } else if (!m_isReadOnly && !name.empty()) {
        QRB_TRY(storeValue(findOrAddAttr(name), CObjectAttr(value), setter));
    }
    return {};
}

CErrorPtr CObject::setAttrText(const CString& name, const CString& value, ESetter setter)
{
    if (m_isReadOnly || name.empty())
        return {};
    QRB_TRY(storeText(findOrAddAttr(name), CTextRef(value), setter));
    return {};
}

CErrorPtr CObject::onAttrChanged(CObject&, const CString& name, const CObjectAttr& value)
{
    if (m_isReadOnly || name.empty())
        return {};
    QRB_TRY(storeValue(findOrAddAttr(name), CObjectAttr(value), ESetter::now));
    return {};
}

CErrorPtr CObject::applyAttrs(const CAttrOverrides* attrs)
{
    if (attrs == nullptr)
        return {};
    for (const auto& [name, value] : *attrs)
        QRB_TRY(setAttrValue(name, value));
    return {};
}

std::size_t CObject::findOrAddAttr(const CString& name)
{
    const std::uint32_t hash = name.hash();
    const std::size_t index = m_attrs.find(hash, name);
    return index != CAttrTable::npos ? index : addAttr(hash, CTextRef(name));
}

CAttrSetter CObject::findSetter(std::uint32_t hash, const CString& name) const
{
    return m_classInfo != nullptr ? m_classInfo->findSetter(hash, name) : nullptr;
}

std::size_t CObject::addAttr(std::uint32_t hash, CTextRef&& name)
{
    const CAttrSetter setter = findSetter(hash, name.text());
    return m_attrs.append(hash, std::move(name), CObjectAttr(), setter);
}

CErrorPtr CObject::storeText(std::size_t index, CTextRef&& value, ESetter setter)
{
    return storeValue(index, CObjectAttr(std::move(value)), setter);
}

CErrorPtr CObject::storeValue(std::size_t index, CObjectAttr&& value, ESetter setter)
{
    m_attrs[index].value = std::move(value);
    if (setter == ESetter::queue) {
        queueSetter(index);
    } else if (m_attrs[index].setter != nullptr) {
        QRB_TRY(runSetter(index));
    }
    if (m_bindings != nullptr)
        QRB_TRY(notifyBound(index));
    return {};
}

void CObject::queueSetter(std::size_t index)
{
    CAttrTable::CEntry& entry = m_attrs[index];
    if (entry.setter == nullptr || entry.isQueued)
        return;
    entry.isQueued = true;
    m_pendingSetters.append(static_cast<std::uint32_t>(index));
}

CErrorPtr CObject::runSetter(std::size_t index)
{
    // A copy, since the setter may add attributes, which moves the entries.
    const CObjectAttr value = m_attrs[index].value;
    return m_attrs[index].setter(*this, value);
}

CErrorPtr CObject::flushSetters()
{
    while (!m_pendingSetters.empty()) {
        const std::size_t index = m_pendingSetters.back();
        m_pendingSetters.removeLast();
        m_attrs[index].isQueued = false;
        QRB_TRY(runSetter(index));
    }
    return {};
}

CErrorPtr CObject::notifyBound(std::size_t index)
{
    if (m_attrs[index].isNotifying)
        return {};
    m_attrs[index].isNotifying = true;
    CErrorPtr error;
    // One that is told may set the attribute anew, to a limit, say; all are told of that, too.
    for (int round = 0; round < kMaxAnswers && !error; ++round) {
        const CObjectAttr told = m_attrs[index].value;
        error = m_bindings->notify(*this, m_attrs[index].name, told);
        if (isSame(told, m_attrs[index].value))
            break;
    }
    m_attrs[index].isNotifying = false;
    return error;
}

CAttrBindings& CObject::bindings()
{
    if (m_bindings == nullptr)
        m_bindings.reset(new CAttrBindings);
    return *m_bindings;
}

void CObject::applyClassDefaults()
{
    for (const CObjectClassInfo::CDefaultRow& row : m_classInfo->defaults()) {
        const std::uint32_t hash = row.name->hash();
        queueSetter(m_attrs.append(hash, CTextRef::borrowed(*row.name.record()),
                                   CObjectAttr(CTextRef::borrowed(*row.value.record())),
                                   findSetter(hash, row.name->text)));
    }
}

void CObject::setFullName(CString&& name)
{
    m_fullName = CTextRef(std::move(name));
    const CTextRecord& key = processState().creators->fullNameKey();
    m_attrs.append(key.hash(), CTextRef::borrowed(key), CObjectAttr(CTextRef(m_fullName)), nullptr);
}

void CObject::makeReadOnly()
{
    for (std::size_t index = 0; index < m_attrs.size(); ++index)
        m_attrs[index].value.freeze();
    m_isReadOnly = true;
}

const CObjectAttr* CObject::findAttr(const CString& name) const
{
    const std::size_t index = m_attrs.find(name.hash(), name);
    return index != CAttrTable::npos ? &m_attrs[index].value : nullptr;
}

CString CObject::getAttrString(const CString& name, const CString& def) const
{
    const CObjectAttr* const attr = findAttr(name);
    return attr != nullptr ? attr->toString(def) : def;
}

bool CObject::getAttrBool(const CString& name, bool def) const
{
    const CObjectAttr* const attr = findAttr(name);
    return attr != nullptr ? attr->toBool(def) : def;
}

std::int32_t CObject::getAttrInt(const CString& name, std::int32_t def) const
{
    const CObjectAttr* const attr = findAttr(name);
    return attr != nullptr ? attr->toInt(def) : def;
}

double CObject::getAttrDouble(const CString& name, double def) const
{
    const CObjectAttr* const attr = findAttr(name);
    return attr != nullptr ? attr->toDouble(def) : def;
}

} // namespace qrb
