// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CZipStream.h"

#include "Core/CQrbMemAllocator.h"
#include "Core/CZipState.h"

#include <limits>

namespace qrb {

namespace {

voidpf allocateForZip(voidpf, uInt items, uInt size)
{
    static_assert(sizeof(std::size_t) > sizeof(uInt), "the product below cannot overflow");
    return CQrbMemAllocator::allocate(std::size_t{items} * size);
}

void releaseForZip(voidpf, voidpf block)
{
    CQrbMemAllocator::release(block);
}

} // namespace

CZipStream::CState::CState()
{
    zip.zalloc = &allocateForZip;
    zip.zfree = &releaseForZip;
}

CZipStream::CZipStream() = default;

CZipStream::~CZipStream() = default;

CString CZipStream::lastMessage() const
{
    return m_state && m_state->zip.msg != nullptr ? CString(m_state->zip.msg) : CString();
}

} // namespace qrb
