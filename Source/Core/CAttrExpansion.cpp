// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CAttrExpansion.h"

#include "Core/CAttrBindings.h"
#include "Core/CObject.h"
#include "Core/CTextRecord.h"
#include "Core/CTextSplit.h"

namespace qrb {

const CString& CAttrExpansion::fullName() const
{
    return m_object.fullName();
}

CTextRef CAttrExpansion::textOf(const CObjectAttr& value)
{
    return value.type() == CObjectAttr::EType::string ? value.textRef() : CTextRef(value.toString());
}

const CObjectAttr* CAttrExpansion::findInherited(const CObject& object, std::uint32_t hash, const CString& name)
{
    for (const CObject* holder = &object; holder != nullptr; holder = holder->m_parent) {
        const std::size_t index = holder->m_attrs.find(hash, name);
        if (index != CAttrTable::npos)
            return &holder->m_attrs[index].value;
    }
    return nullptr;
}

CErrorPtr CAttrExpansion::expand(CTextRef& text)
{
    const std::size_t maxLength = text.text().length() + kMaxGrowth;
    for (int step = 0;; ++step) {
        const CString& now = text.text();
        const std::size_t open = now.rfind(u'{');
        const std::size_t close = open == CString::npos ? CString::npos : now.find(u'}', open + 1);
        if (close == CString::npos)
            return {};
        if (step == kMaxSteps || now.length() > maxLength)
            return QRB_ERROR("@qrbstr_CObject_setAttr_EndlessExpansion Expansion of attribute '%1' does not end.",
                             m_attrName);
        CTextRef result = evaluate(now.substr(open + 1, close - open - 1));
        if (open == 0 && close + 1 == now.length()) {
            text = result ? std::move(result) : CTextRef(CString());
        } else {
            CString joined = now.substr(0, open);
            joined += result.text();
            joined += now.substr(close + 1);
            text = CTextRef(std::move(joined));
        }
    }
}

CTextRef CAttrExpansion::evaluate(const CString& body)
{
    const std::size_t mark = body.find(u'?');
    const CString reference = body.substr(0, mark);
    const CString def = mark == CString::npos ? CString() : body.substr(mark + 1);
    if (reference.empty())
        return resolve(m_attrName, def, true);
    switch (reference.at(0)) {
    case u'@':
        return resolve(reference.substr(1), def, false);
    case u'*':
        return bind(reference.substr(1));
    default:
        return resolve(reference, def, true);
    }
}

CTextRef CAttrExpansion::resolve(const CString& reference, const CString& def, bool isInherited) const
{
    const CObject* object = &m_object;
    CString attr = reference.empty() ? m_attrName : reference;
    if (reference.startsWith("/")) {
        const std::size_t blank = reference.find(u' ');
        object = m_object.findObject(reference.substr(1, blank == CString::npos ? blank : blank - 1));
        attr = blank == CString::npos ? m_attrName : reference.substr(blank + 1);
    }
    if (object == nullptr)
        return CTextRef(def);
    const CObjectAttr* const value = isInherited ? findInherited(*object, attr.hash(), attr) : object->findAttr(attr);
    return value != nullptr ? textOf(*value) : CTextRef(def);
}

CTextRef CAttrExpansion::bind(const CString& reference)
{
    const CArray<CString> words = split(reference, u' ', EEmpty::drop);
    if (words.size() != 2)
        return {};
    CObject* const target = findBindingTarget(words[0]);
    if (target == nullptr || target->isReadOnly() || target == &m_object)
        return {};
    CAttrBindings::bind(*target, words[1], m_object, m_attrName);
    // The value of a scheme arrives with its first change.
    const CObjectAttr* const value = words[1] == "scheme" ? nullptr : target->findAttr(words[1]);
    return value != nullptr ? textOf(*value) : CTextRef();
}

CObject* CAttrExpansion::findBindingTarget(const CString& path) const
{
    if (path.startsWith("/"))
        return m_object.findObject(path.substr(1));
    for (const CObject* holder = &m_object; holder != nullptr; holder = holder->parent()) {
        if (CObject* const child = holder->findChild(path))
            return child;
    }
    return nullptr;
}

} // namespace qrb
