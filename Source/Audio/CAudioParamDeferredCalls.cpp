// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParamDeferredCalls.h"

#include <algorithm>
#include <utility>

namespace qrb {

CAudioParamDeferredCalls::CAudioParamDeferredCalls()
{
    m_calls.reserve(kRoom);
    m_changes.reserve(kRoom);
}

void CAudioParamDeferredCalls::addCall(CAudioParamDeferredTarget& target, std::int32_t index, double value)
{
    m_calls.append({&target, index, value});
}

void CAudioParamDeferredCalls::addLatest(CAudioParamDeferredTarget& target, std::int32_t index, double value)
{
    const auto known = std::find_if(m_calls.begin(), m_calls.end(), [&target, index](const CCall& call) {
        return call.target == &target && call.index == index;
    });
    if (known != m_calls.end())
        known->value = value;
    else
        addCall(target, index, value);
}

void CAudioParamDeferredCalls::addChange(const CChange& change)
{
    const auto known = std::find_if(m_changes.begin(), m_changes.end(), [&change](const CChange& other) {
        return other.param == change.param && other.group == change.group && other.source == change.source;
    });
    if (known == m_changes.end()) {
        m_changes.append(change);
        return;
    }
    known->firstElement = std::min(known->firstElement, change.firstElement);
    known->endElement = std::max(known->endElement, change.endElement);
}

void CAudioParamDeferredCalls::cancel(const CAudioParamDeferredTarget& target)
{
    // Kept as an entry, since a run over the calls may be under way.
    for (CCall& call : m_calls)
        if (call.target == &target)
            call.target = nullptr;
}

void CAudioParamDeferredCalls::swap(CAudioParamDeferredCalls& other)
{
    std::swap(m_calls, other.m_calls);
    std::swap(m_changes, other.m_changes);
}

void CAudioParamDeferredCalls::clear()
{
    m_calls.clear();
    m_changes.clear();
}

} // namespace qrb
