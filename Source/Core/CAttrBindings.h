// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CArray.h"
#include "Core/CError.h"
#include "Core/CQrbStdAllocator.h"
#include "Core/CString.h"

namespace qrb {

class CObject;
class CObjectAttr;
class CTextRef;

/// Live bindings of one object, in both directions: who follows its attributes, and whom it follows.
class CAttrBindings {
public:
    /// Makes `local` of `listener` follow `source` of `target`; once is enough.
    static void bind(CObject& target, const CString& source, CObject& listener, const CString& local);

    /// Tells all who follow the attribute: once with their own name of it, once more with its own.
    [[nodiscard]] CErrorPtr notify(CObject& self, CTextRef name, CObjectAttr value);
    /// Ends all bindings of `self`, whose bindings these are.
    void unlink(CObject& self);

private:
    struct CFollower {
        CObject* listener;
        CString local;
    };
    using Followers = CArray<CFollower, 1>;

    [[nodiscard]] bool isFollowed(const CString& source, const CFollower& follower) const;
    void removeListener(const CObject& listener);

    CMap<CString, Followers> m_followers; ///< by name of the attribute here
    CSet<CObject*> m_targets;
};

} // namespace qrb
