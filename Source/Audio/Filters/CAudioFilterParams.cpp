// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Filters/CAudioFilterParams.h"

namespace qrb {

namespace {

constexpr const char* kFixedNames[] = {"freq", "gain", "bw"};
constexpr std::size_t kFixedCount = std::size(kFixedNames);

} // namespace

CAudioFilterParams::CAudioFilterParams()
{
    m_values.resize(kFixedCount);
}

void CAudioFilterParams::clear()
{
    m_places.clear();
    m_values.clear();
    m_values.resize(kFixedCount);
}

std::size_t CAudioFilterParams::add(const CString& name)
{
    if (const auto found = m_places.find(name); found != m_places.end())
        return found->second;
    std::size_t place = 0;
    while (place < kFixedCount && !(name == kFixedNames[place]))
        ++place;
    if (place == kFixedCount) {
        place = m_values.size();
        m_values.append(0.0);
    }
    m_places.emplace(name, place);
    return place;
}

bool CAudioFilterParams::get(const CString& name, double& out) const
{
    const auto found = m_places.find(name);
    if (found == m_places.end())
        return false;
    out = m_values[found->second];
    return true;
}

} // namespace qrb
