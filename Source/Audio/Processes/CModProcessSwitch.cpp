// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/CModProcessSwitch.h"

#include "Audio/CAudioProcessConnection.h"
#include "Audio/Processes/CModProcessSwitchDef.h"
#include "Core/CNumberText.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace qrb {

namespace {

constexpr int kAllPorts = CAudioProcessConnection::kAllPorts;

} // namespace

CErrorPtr CModProcessSwitch::init()
{
    const auto slot = [this](int index) {
        return m_switchDef.paramAllocs().contains(index) ? regParam(index, 0.0) : CAudioParamSlot{};
    };
    m_indexSlot = slot(0);
    m_countSlot = slot(1);
    innerInput().connect(kAllPorts, innerOutput(), kAllPorts);
    return nullptr;
}

void CModProcessSwitch::disconnectAll()
{
    CAudioProcessComposite::disconnectAll();
    rebuild(0, 0);
    m_isBuilt = false;
}

void CModProcessSwitch::update()
{
    if (isConfigurationChanged()) {
        announceInner();
    }
    const bool areParamsChanged = takeParamChanges();
    if ((!m_indexSlot.isBound() && !m_countSlot.isBound()) || (m_isBuilt && !areParamsChanged)) {
        return;
    }
    const int group = std::max(groupIndex(), 0);
    const int index = m_indexSlot.valueInt(group, elementIndex());
    const int count = m_countSlot.valueInt(group, elementIndex());
    if (m_isBuilt && index == m_index && count == m_count) {
        return;
    }
    m_index = index;
    m_count = count;
    m_isBuilt = true;
    const std::int64_t above = std::int64_t{count} - elementIndex() - 1;
    rebuild(index, m_switchDef.isAllpassBank() ? static_cast<int>(std::clamp<std::int64_t>(above, 0, kMaxCopies)) : 1);
}

void CModProcessSwitch::rebuild(int number, int count)
{
    sequenceStore().clear();
    while (!m_copies.empty()) {
        m_copies.removeLast(); // takes its connections along
    }
    const CModProcessSwitchDef::CEntry* entry = m_switchDef.find(number);
    innerInput().disconnectAll();
    CAudioLineSource* end = &innerInput();
    for (int copy = 0; copy < count && entry != nullptr; ++copy) {
        CString name = fullName() + "." + m_switchDef.childName(*entry);
        if (copy > 0) {
            name += "#";
            name += formatInteger(copy);
        }
        const int element = elementIndex() + copy + (m_switchDef.isAllpassBank() ? 1 : 0);
        std::unique_ptr<CAudioProcessBase> node = makeInner(*entry->definition, name, element);
        if (node == nullptr) {
            break;
        }
        end->connect(kAllPorts, node->input(), kAllPorts);
        end = &node->output();
        sequenceStore().append(node.get());
        m_copies.append(std::move(node));
    }
    end->connect(kAllPorts, innerOutput(), kAllPorts);
}

} // namespace qrb
