// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/HostParams/CAudioExtParamList.h"

#include "Audio/HostParams/CAudioExtParam.h"

#include <algorithm>

namespace qrb {

void CAudioExtParamList::declare(CObjectClassInfo& info)
{
    CObject::declare(info);
}

CErrorPtr CAudioExtParamList::onChildAdded(CObject& child)
{
    QRB_TRY(CObject::onChildAdded(child));
    if (auto* const param = dynamic_cast<CAudioExtParam*>(&child))
        m_params.append(param);
    return nullptr;
}

void CAudioExtParamList::removeChild(CObject& child)
{
    const auto* const place = std::find(m_params.begin(), m_params.end(), &child);
    if (place != m_params.end())
        m_params.removeAt(static_cast<std::size_t>(place - m_params.begin()));
    CObject::removeChild(child);
}

} // namespace qrb
