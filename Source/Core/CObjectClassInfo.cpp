// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CObjectClassInfo.h"

#include "Core/CTextRecord.h"

namespace qrb {

namespace {

/// Rows and free slots are at least even, so that a search for what is not there ends soon.
std::size_t slotCountFor(std::size_t rows)
{
    std::size_t count = 8;
    while (count < rows * 2)
        count *= 2;
    return count;
}

} // namespace

CErrorPtr CObjectEvent::call(CObject& object, const CEventArgs& args) const
{
    return handler != nullptr ? handler(object) : handlerWithArgs(object, args);
}

void CObjectClassInfo::def(const char* name, const char* value)
{
    for (CDefaultRow& row : m_defaults) {
        if (row.name.text() == name) {
            row.value = CTextRef(CString(value));
            return;
        }
    }
    m_defaults.append({CTextRef(CString(name)), CTextRef(CString(value))});
}

void CObjectClassInfo::addAttr(const char* name, CAttrSetter setter)
{
    for (CAttrRow& row : m_attrs) {
        if (row.name.text() == name) {
            row.setter = setter;
            return;
        }
    }
    m_attrs.append({CTextRef(CString(name)), setter});
    rebuildSlots();
}

void CObjectClassInfo::addEvent(const char* name, CObjectEvent event)
{
    event.name = CString(name);
    m_events.insert_or_assign(event.name, std::move(event));
}

void CObjectClassInfo::rebuildSlots()
{
    m_slots.clear();
    m_slots.resize(slotCountFor(m_attrs.size()));
    const std::size_t mask = m_slots.size() - 1;
    for (std::size_t row = 0; row < m_attrs.size(); ++row) {
        std::size_t slot = m_attrs[row].name->hash() & mask;
        while (m_slots[slot] != 0)
            slot = (slot + 1) & mask;
        m_slots[slot] = static_cast<std::uint16_t>(row + 1);
    }
}

CAttrSetter CObjectClassInfo::findSetter(std::uint32_t hash, const CString& name) const
{
    if (m_slots.empty())
        return nullptr;
    const std::size_t mask = m_slots.size() - 1;
    for (std::size_t slot = hash & mask; m_slots[slot] != 0; slot = (slot + 1) & mask) {
        const CAttrRow& row = m_attrs[m_slots[slot] - 1u];
        if (row.name->hash() == hash && row.name->text == name)
            return row.setter;
    }
    return nullptr;
}

const CObjectEvent* CObjectClassInfo::findEvent(const CString& name) const
{
    const auto found = m_events.find(name);
    return found != m_events.end() ? &found->second : nullptr;
}

} // namespace qrb
