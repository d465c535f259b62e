// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Interface/CGroupNamesParamListener.h"

#include "Audio/CAudioParamUpdate.h"

namespace qrb {

CErrorPtr CGroupNamesParamListener::onParamInfo(CInputStream& in)
{
    QRB_TRY(m_info.load(in));
    if (m_values.format() != m_info.format)
        m_values.setFormat(m_info.format);
    return {};
}

CErrorPtr CGroupNamesParamListener::onParamValue(const CAudioParamUpdate& update)
{
    m_values.apply(update);
    return {};
}

} // namespace qrb
