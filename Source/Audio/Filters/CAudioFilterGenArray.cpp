// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Filters/CAudioFilterGenArray.h"

namespace qrb {

const CAudioFilterGen* CAudioFilterGenArray::get(int index) const
{
    return index >= 0 && index < count() ? m_designers[static_cast<std::size_t>(index)] : nullptr;
}

void CAudioFilterGenArray::set(int index, const CAudioFilterGen& designer)
{
    while (count() <= index)
        m_designers.append(nullptr);
    m_designers[static_cast<std::size_t>(index)] = &designer;
}

} // namespace qrb
