// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/CModResamplerDef.h"

#include "Audio/Processes/CModResampler.h"
#include "Core/CNumberText.h"

namespace qrb {

CErrorPtr CModResamplerDef::init()
{
    QRB_TRY(CAudioProcessDefBase::init());
    m_isUpsampler = getAttrBool("is-upsampler");
    return nullptr;
}

std::unique_ptr<CAudioProcessBase> CModResamplerDef::createProcess() const
{
    return std::make_unique<CModResampler>(*this);
}

CErrorPtr CModResamplerDef::findParts(CParts& out) const
{
    QRB_TRY(
        findProcess(m_isUpsampler ? "shared::audio.modUpsamplerInterpolator" : "shared::audio.modDownsamplerDecimator",
                    out.rateChanger));
    QRB_TRY(
        findProcess(m_isUpsampler ? "shared::audio.modUpsamplerFilterSteep" : "shared::audio.modDownsamplerFilterSteep",
                    out.steepFilter));
    QRB_TRY(findProcess("shared::audio.modResamplerFilterSoft", out.softFilter));
    return nullptr;
}

void CModResamplerDef::visitInner(const std::function<void(const CAudioInnerProcess&)>& visit) const
{
    CParts parts;
    if (const CErrorPtr error = findParts(parts)) {
        return; // the node will not come to life, and tells why
    }
    for (int stage = 0; stage < kMaxStages; ++stage) {
        visit({*parts.rateChanger, rateChangerName(stage)});
        visit({stage == 0 ? *parts.steepFilter : *parts.softFilter, filterName(stage)});
    }
}

CString CModResamplerDef::rateChangerName(int stage) const
{
    return (m_isUpsampler ? "modInterpInterp" : "modInterpDecim") + formatInteger(stage);
}

CString CModResamplerDef::filterName(int stage) const
{
    return "modFilter" + formatInteger(stage);
}

} // namespace qrb
