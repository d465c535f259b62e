// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/VST/CAudioWrapperVST3Parameter.h"

#include "Audio/HostParams/CAudioExtParam.h"
#include "Audio/VST/VstText.h"

#include <algorithm>
#include <cmath>

namespace qrb {

using Steinberg::Vst::ParameterInfo;
using Steinberg::Vst::ParamValue;

CAudioWrapperVST3Parameter::CAudioWrapperVST3Parameter(CAudioExtParam& param, const std::atomic<bool>& isProcessing)
    : m_param(param), m_isProcessing(isProcessing)
{
    copyToHost(param.getName(), info.title);
    copyToHost(param.getName(), info.shortTitle);
    copyToHost(param.getUnits(), info.units);
    info.id = static_cast<Steinberg::Vst::ParamID>(param.index());
    info.unitId = Steinberg::Vst::kRootUnitId;
    info.flags = ParameterInfo::kCanAutomate;
    info.stepCount = 0;
    if (param.getName() == "Bypass") {
        info.flags |= ParameterInfo::kIsBypass;
        info.stepCount = 1;
    }
    info.defaultNormalizedValue = param.getDefaultNormal();
    Parameter::setNormalized(param.getNormal());
}

bool CAudioWrapperVST3Parameter::setNormalized(ParamValue value)
{
    if (!std::isfinite(value))
        return false;
    const ParamValue normal = std::clamp(value, 0.0, 1.0);
    if (!m_isProcessing)
        m_param.setNormal(normal);
    return Parameter::setNormalized(normal);
}

void CAudioWrapperVST3Parameter::toString(ParamValue value, Steinberg::Vst::String128 text) const
{
    copyToHost(m_param.formatNormal(value), text);
}

bool CAudioWrapperVST3Parameter::fromString(const Steinberg::Vst::TChar* text, ParamValue& value) const
{
    value = m_param.parseNormal(textOfHost(text));
    return true;
}

} // namespace qrb
