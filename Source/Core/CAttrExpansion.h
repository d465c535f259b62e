// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CError.h"
#include "Core/CString.h"
#include "Core/CTextRef.h"

#include <cstdint>

namespace qrb {

class CObject;
class CObjectAttr;

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

    /// The attribute of the object, or else of the nearest object above it that has one, or null.
    [[nodiscard]] static const CObjectAttr* findInherited(const CObject& object, std::uint32_t hash,
                                                          const CString& name);
    /// The text of a value; a string's is shared.
    [[nodiscard]] static CTextRef textOf(const CObjectAttr& value);

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
