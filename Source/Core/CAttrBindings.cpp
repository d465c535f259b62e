// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CAttrBindings.h"

#include "Core/CObject.h"
#include "Core/CTextRecord.h"

namespace qrb {

void CAttrBindings::bind(CObject& target, const CString& source, CObject& listener, const CString& local)
{
    CAttrBindings& bindings = target.bindings();
    const CFollower follower{&listener, local};
    if (!bindings.isFollowed(source, follower))
        bindings.m_followers[source].append(follower);
    listener.bindings().m_targets.insert(&target);
}

CErrorPtr CAttrBindings::notify(CObject& self, CTextRef name, CObjectAttr value)
{
    const auto found = m_followers.find(name.text());
    if (found == m_followers.end())
        return {};
    const CString source = name.text();
    const Followers followers = found->second; // a change may end bindings, and make others
    for (const CFollower& follower : followers) {
        if (isFollowed(source, follower)) {
            if (CErrorPtr error = follower.listener->onAttrChanged(self, follower.local, value))
                return std::move(error).traced(__FILE__, __LINE__, self.fullName());
        }
        if (!(follower.local == source) && isFollowed(source, follower)) {
            if (CErrorPtr error = follower.listener->onAttrChanged(self, source, value))
                return std::move(error).traced(__FILE__, __LINE__, self.fullName());
        }
    }
    return {};
}

void CAttrBindings::unlink(CObject& self)
{
    for (CObject* const target : m_targets)
        target->bindings().removeListener(self);
    m_targets.clear();
    for (const auto& [source, followers] : m_followers) {
        for (const CFollower& follower : followers)
            follower.listener->bindings().m_targets.erase(&self);
    }
    m_followers.clear();
}

bool CAttrBindings::isFollowed(const CString& source, const CFollower& follower) const
{
    const auto found = m_followers.find(source);
    if (found == m_followers.end())
        return false;
    for (const CFollower& each : found->second) {
        if (each.listener == follower.listener && each.local == follower.local)
            return true;
    }
    return false;
}

void CAttrBindings::removeListener(const CObject& listener)
{
    for (auto& [source, followers] : m_followers) {
        for (std::size_t index = followers.size(); index-- > 0;) {
            if (followers[index].listener == &listener)
                followers.removeAt(index);
        }
    }
}

} // namespace qrb
