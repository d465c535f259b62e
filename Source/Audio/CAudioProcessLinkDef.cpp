// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioProcessLinkDef.h"

#include "Core/CNumberText.h"

#include <cstdint>

namespace qrb {

namespace {

enum class EEndFault { none, name, port };

EEndFault parseEnd(const CString& text, CAudioProcessLinkDef::CEnd& out)
{
    const std::size_t slash = text.find(u'/');
    out.process = text.substr(0, slash).trimmed();
    if (out.process.empty()) {
        return EEndFault::name;
    }
    out.port = 0;
    if (slash == CString::npos) {
        return EEndFault::none;
    }
    std::int32_t port = -1;
    if (!parseInteger(text.substr(slash + 1).trimmed(), port) || port < 0) {
        return EEndFault::port;
    }
    out.port = port;
    return EEndFault::none;
}

/// Integers between blanks, commas and semicolons.
void parseIds(const CString& text, CArray<int>& out)
{
    CString item;
    for (std::size_t i = 0; i <= text.length(); ++i) {
        const char16_t unit = i < text.length() ? text.at(i) : u',';
        if (unit != u',' && unit != u';' && unit > u' ') {
            item.append(unit);
            continue;
        }
        std::int32_t id = 0;
        if (parseInteger(item, id)) {
            out.append(id);
        }
        item.clear();
    }
}

} // namespace

CErrorPtr CAudioProcessLinkDef::init()
{
    QRB_TRY(CObject::init());
    if (!hasAttr("src")) {
        return QRB_ERROR("@qrbstr_CAudioProcessLinkDef_init_NoSrc No 'src' attribute defined.");
    }
    const CString src = getAttrString("src");
    switch (parseEnd(src, m_source)) {
    case EEndFault::name:
        return QRB_ERROR("@qrbstr_CAudioProcessLinkDef_init_SrcNameError Invalid process in the 'src' attribute value "
                         "'%1' specified.",
                         src);
    case EEndFault::port:
        return QRB_ERROR("@qrbstr_CAudioProcessLinkDef_init_SrcPortError Invalid port in the 'src' attribute value "
                         "'%1' specified.",
                         src);
    case EEndFault::none:
        break;
    }
    if (!hasAttr("dst")) {
        return QRB_ERROR("@qrbstr_CAudioProcessLinkDef_init_NoDst No 'dst' attribute defined.");
    }
    const CString dst = getAttrString("dst");
    switch (parseEnd(dst, m_destination)) {
    case EEndFault::name:
        return QRB_ERROR("@qrbstr_CAudioProcessLinkDef_init_DstNameError Invalid process in the 'dst' attribute value "
                         "'%1' specified.",
                         dst);
    case EEndFault::port:
        return QRB_ERROR("@qrbstr_CAudioProcessLinkDef_init_DstPortError Invalid port in the 'dst' attribute value "
                         "'%1' specified.",
                         dst);
    case EEndFault::none:
        break;
    }
    m_stateId = getAttrInt("state-id", -1);
    if (m_stateId < -1) {
        return QRB_ERROR("@qrbstr_CAudioProcessLinkDef_init_StateError Invalid state identifier '%1' specified.",
                         m_stateId);
    }
    parseIds(getAttrString("bypass-state-id"), m_bypassStateIds);
    return nullptr;
}

} // namespace qrb
