// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CTextRef.h"

#include "Core/CTextRecord.h"

#include <new>

namespace qrb {

namespace {

const CString& emptyText()
{
    static const CString text;
    return text;
}

} // namespace

CTextRef::CTextRef(const CString& text) : CTextRef(CString(text)) {}

CTextRef::CTextRef(CString&& text)
{
    CTextRecord* const record = ::new (CQrbMemAllocator::allocate(sizeof(CTextRecord))) CTextRecord;
    record->assign(std::move(text));
    record->retain();
    m_bits = reinterpret_cast<std::uintptr_t>(record);
}

CTextRef::CTextRef(const CTextRef& other)
{
    if (other)
        *this = counted(*other.record());
}

CTextRef& CTextRef::operator=(const CTextRef& other)
{
    return *this = CTextRef(other);
}

CTextRef CTextRef::counted(const CTextRecord& record)
{
    record.retain();
    CTextRef ref;
    ref.m_bits = reinterpret_cast<std::uintptr_t>(&record);
    return ref;
}

void CTextRef::drop() noexcept
{
    record()->release();
}

const CString& CTextRef::text() const
{
    return m_bits != 0 ? record()->text : emptyText();
}

} // namespace qrb
