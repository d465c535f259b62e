// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/CModProcessSwitchDef.h"

#include "Audio/Processes/CModProcessSwitch.h"
#include "Core/CNumberText.h"
#include "Core/CTextSplit.h"

#include <algorithm>

namespace qrb {

CErrorPtr CModProcessSwitchDef::init()
{
    QRB_TRY(CAudioProcessDefBase::init());
    m_childName = getAttrString("def-child-name");
    m_defaultNumber = getAttrInt("def-index");
    m_isAllpassBank = getAttrBool("is-allpass-bank");
    int place = 0;
    for (const CString& item : split(getAttrString("process-list"), u';')) {
        ++place;
        const std::size_t colon = item.find(u':');
        if (colon == CString::npos) {
            return QRB_ERROR("@qrbstr_CModProcessSwitchDef_init_NoIndex No index delimiter ':' found in item #%1.",
                             place);
        }
        const CString numberText = item.substr(0, colon).trimmed();
        std::int32_t number = 0;
        if (!parseInteger(numberText, number) || number < 0) {
            return QRB_ERROR("@qrbstr_CModProcessSwitchDef_init_IndexError Invalid index value '%1' in item #%2.",
                             numberText, place);
        }
        if (!m_paths.emplace(number, item.substr(colon + 1).trimmed()).second) {
            return QRB_ERROR("@qrbstr_CModProcessSwitchDef_init_IndexDupeError Duplicate index value '%1' used in item "
                             "#%2.",
                             numberText, place);
        }
    }
    return nullptr;
}

CErrorPtr CModProcessSwitchDef::initChilds()
{
    QRB_TRY(CAudioProcessDefBase::initChilds());
    for (const auto& [number, path] : m_paths) {
        const CAudioProcessDefBase* definition = nullptr;
        QRB_TRY(findProcess(path, definition));
        m_entries.append({number, definition});
    }
    return nullptr;
}

std::unique_ptr<CAudioProcessBase> CModProcessSwitchDef::createProcess() const
{
    return std::make_unique<CModProcessSwitch>(*this);
}

void CModProcessSwitchDef::visitInner(const std::function<void(const CAudioInnerProcess&)>& visit) const
{
    for (const CEntry& entry : m_entries) {
        visit({*entry.definition, childName(entry), m_childName});
    }
}

const CModProcessSwitchDef::CEntry* CModProcessSwitchDef::find(int number) const
{
    for (const int wanted : {number, m_defaultNumber}) {
        const auto found = std::ranges::find(m_entries.span(), wanted, &CEntry::number);
        if (found != m_entries.span().end()) {
            return &*found;
        }
    }
    return nullptr;
}

CString CModProcessSwitchDef::childName(const CEntry& entry) const
{
    return m_childName + formatInteger(entry.number);
}

} // namespace qrb
