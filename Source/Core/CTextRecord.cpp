// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CTextRecord.h"

#include "Core/CObjectDocumentData.h"

#include <utility>

namespace qrb {

void CTextRecord::assign(CString&& value)
{
    text = std::move(value);
    hasBrace = text.contains(u'{');
    isOff = text.empty() || (text.length() == 5 && text == "false");
}

void CTextRecord::retain() const
{
    if (document != nullptr)
        document->retain();
    else
        references.fetch_add(1, std::memory_order_relaxed);
}

void CTextRecord::release() const
{
    if (document != nullptr) {
        document->release();
    } else if (references.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        CTextRecord* const self = const_cast<CTextRecord*>(this);
        self->~CTextRecord();
        CQrbMemAllocator::release(self);
    }
}

} // namespace qrb
