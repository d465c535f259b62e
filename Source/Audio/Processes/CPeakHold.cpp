// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/CPeakHold.h"

#include <algorithm>

namespace qrb {

void CPeakHold::start(int length, double value, bool isOfMinima)
{
    m_ring.resize(static_cast<std::size_t>(std::clamp(length, 1, kMaxLength)));
    std::fill(m_ring.begin(), m_ring.end(), value);
    m_position = static_cast<int>(m_ring.size()) - 1;
    m_age = m_position;
    m_held = value;
    m_isOfMinima = isOfMinima;
}

void CPeakHold::add(double peak)
{
    const int length = static_cast<int>(m_ring.size());
    m_ring[static_cast<std::size_t>(m_position)] = peak;
    m_position = m_position == 0 ? length - 1 : m_position - 1;
    if (isHigherOrSame(peak, m_held)) {
        m_held = peak;
        m_age = length;
    } else if (m_age > 0) {
        --m_age;
    } else {
        scan();
    }
}

void CPeakHold::scan()
{
    const int length = static_cast<int>(m_ring.size());
    int found = 0;
    const auto at = [&](int age) { return m_ring[static_cast<std::size_t>((m_position + 1 + age) % length)]; };
    for (int age = 1; age < length; ++age)
        if (!isHigherOrSame(at(found), at(age)))
            found = age;
    m_held = at(found);
    m_age = length - found;
}

} // namespace qrb
