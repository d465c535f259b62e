// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CHostParam.h"

#include "Audio/CAudioParam.h"

namespace qrb {

void CHostParam::set(double value)
{
    m_value.store(value);
    m_isPending.store(true);
    flush();
}

void CHostParam::flush()
{
    if (m_param == nullptr || !m_isPending.exchange(false))
        return;
    if (!m_param->trySetElement(0, 0, m_value.load()))
        m_isPending.store(true);
}

} // namespace qrb
