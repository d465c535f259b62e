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
    const double value = m_value.load();
    // Another thread may have set, and written, a newer value meanwhile; then the older one must not stay.
    if (!m_param->trySetElement(0, 0, value) || m_value.load() != value)
        m_isPending.store(true);
}

} // namespace qrb
