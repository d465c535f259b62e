// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParamRemapDef.h"

#include "Core/CTextSplit.h"

namespace qrb {

void CAudioParamRemapDef::declare(CObjectClassInfo& info)
{
    CObject::declare(info);
}

CErrorPtr CAudioParamRemapDef::initChilds()
{
    QRB_TRY(CObject::initChilds());
    const CString original = getAttrString("orig").trimmed();
    const CString renamed = getAttrString("new").trimmed();
    if (!original.empty() && !renamed.empty())
        m_pairs.append({original, renamed});
    for (const CObject* const child : childs())
        if (child->tag() == "content")
            QRB_TRY(readItems(child->getAttrString("value")));
    if (m_pairs.empty())
        return QRB_ERROR("@qrbstr_CAudioParamRemapDef_initChilds_NoRemappings No remappings defined.");
    return {};
}

CErrorPtr CAudioParamRemapDef::readItems(const CString& text)
{
    for (const CString& piece : split(text, text.contains(';') ? ';' : ' ')) {
        const CString item = piece.trimmed();
        if (item.empty())
            continue;
        const CArray<CString> sides = split(item, '=', EEmpty::keep);
        const bool isPair = sides.size() == 2;
        const CString original = isPair ? sides[0].trimmed() : CString();
        const CString renamed = isPair ? sides[1].trimmed() : CString();
        if (original.empty() || renamed.empty())
            return QRB_ERROR("@qrbstr_CAudioParamRemapDef_readItems_Invalid Invalid remapping string '%1' defined.",
                             item);
        m_pairs.append({original, renamed});
    }
    return {};
}

} // namespace qrb
