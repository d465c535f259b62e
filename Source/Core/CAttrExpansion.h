// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CError.h"
#include "Core/CString.h"
#include "Core/CTextRef.h"

namespace qrb {

class CObject;

/// Replaces the expressions in the value of an attribute, the innermost first:
///   {}  {name}  {/path name}     value of an attribute, looked for from the object up to its root; "?default" behind
///   {@name}                      the same, at the object alone
///   {*path name}                 its value now, and a binding that follows it
class CAttrExpansion {
public:
    /// Most expressions in one value, and most characters a value may gain.
    static constexpr int kMaxSteps = 1000;
    static constexpr std::size_t kMaxGrowth = 65536;

    CAttrExpansion(CObject& object, const CString& attrName) : m_object(object), m_attrName(attrName) {}

    [[nodiscard]] CErrorPtr expand(CTextRef& text);

private:
    [[nodiscard]] const CString& fullName() const;
    [[nodiscard]] CTextRef evaluate(const CString& body);
    [[nodiscard]] CTextRef resolve(const CString& reference, const CString& def, bool isInherited) const;
    [[nodiscard]] CTextRef bind(const CString& reference);
    [[nodiscard]] CObject* findBindingTarget(const CString& path) const;

    CObject& m_object;
    const CString& m_attrName;
};

} // namespace qrb
