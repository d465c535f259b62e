// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/CModResampler.h"

#include "Audio/CAudioProcessConnection.h"

#include <algorithm>
#include <utility>

namespace qrb {

namespace {

constexpr int kAllPorts = CAudioProcessConnection::kAllPorts;
constexpr int kAutoMode = 0;

} // namespace

CErrorPtr CModResampler::init()
{
    QRB_TRY(m_resamplerDef.findParts(m_parts));
    const auto slot = [this](int index, double unbound) {
        return m_resamplerDef.paramAllocs().contains(index) ? regParam(index, unbound)
                                                            : CAudioParamSlot{nullptr, index, unbound};
    };
    m_modeSlot = slot(0, 1.0);
    m_hostModeSlot = slot(1, 0.0);
    innerInput().connect(kAllPorts, innerOutput(), kAllPorts);
    return nullptr;
}

void CModResampler::disconnectAll()
{
    CAudioProcessComposite::disconnectAll();
    setStageCount(0);
}

void CModResampler::update()
{
    if (isConfigurationChanged()) {
        announceInner();
    }
    if (takeParamChanges() || isConfigurationChanged()) {
        setStageCount(findStageCount());
    }
}

int CModResampler::findStageCount() const
{
    const int group = std::max(groupIndex(), 0);
    const int mode = m_modeSlot.valueInt(group, elementIndex());
    const int hostMode = m_hostModeSlot.valueInt(group, elementIndex());
    const int count = mode == kAutoMode ? hostMode : std::max(mode, 1) - 1;
    return std::clamp(count, 0, CModResamplerDef::kMaxStages);
}

void CModResampler::setStageCount(int count)
{
    if (count == static_cast<int>(m_stages.size())) {
        return;
    }
    // The one place where the chain is open: between the outermost stage and the world.
    openSource().disconnect(kAllPorts, openSink(), kAllPorts);
    while (static_cast<int>(m_stages.size()) > count) {
        m_stages.removeLast(); // takes its connections along
    }
    while (static_cast<int>(m_stages.size()) < count && addStage()) {
    }
    openSource().connect(kAllPorts, openSink(), kAllPorts);
    rebuildSequence();
}

CAudioLineSource& CModResampler::openSource()
{
    return m_resamplerDef.isUpsampler() && !m_stages.empty() ? m_stages.back().second->output() : innerInput();
}

CAudioLineSink& CModResampler::openSink()
{
    return !m_resamplerDef.isUpsampler() && !m_stages.empty() ? m_stages.back().first->input() : innerOutput();
}

bool CModResampler::addStage()
{
    const int place = static_cast<int>(m_stages.size());
    const auto make = [this](const CAudioProcessDefBase& part, const CString& name) {
        return makeInner(part, fullName() + "." + name, elementIndex());
    };
    std::unique_ptr<CAudioProcessBase> changer = make(*m_parts.rateChanger, m_resamplerDef.rateChangerName(place));
    std::unique_ptr<CAudioProcessBase> filter =
        make(place == 0 ? *m_parts.steepFilter : *m_parts.softFilter, m_resamplerDef.filterName(place));
    if (changer == nullptr || filter == nullptr) {
        return false;
    }
    if (!m_resamplerDef.isUpsampler()) {
        std::swap(changer, filter);
    }
    CStage stage{std::move(changer), std::move(filter)};
    stage.first->output().connect(kAllPorts, stage.second->input(), kAllPorts);
    if (m_resamplerDef.isUpsampler()) {
        openSource().connect(kAllPorts, stage.first->input(), kAllPorts);
    } else {
        stage.second->output().connect(kAllPorts, openSink(), kAllPorts);
    }
    m_stages.append(std::move(stage));
    return true;
}

void CModResampler::rebuildSequence()
{
    sequenceStore().clear();
    const std::size_t count = m_stages.size();
    for (std::size_t i = 0; i < count; ++i) {
        const CStage& stage = m_stages[m_resamplerDef.isUpsampler() ? i : count - 1 - i];
        sequenceStore().append(stage.first.get());
        sequenceStore().append(stage.second.get());
    }
}

} // namespace qrb
