// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/VST/CAudioWrapperVST3ProgramParameter.h"

#include "Audio/Presets/CAudioParamRegistry.h"
#include "Audio/VST/VstText.h"
#include "Core/CNumberText.h"

#include <algorithm>
#include <cmath>

namespace qrb {

using Steinberg::Vst::ParameterInfo;
using Steinberg::Vst::ParamValue;

namespace {

/// The visible part of a program's name, which stands behind the registry's id.
CString visibleName(const CString& whole)
{
    const std::size_t colon = whole.find(u':');
    return colon == CString::npos ? whole : whole.substr(colon + 1);
}

} // namespace

CAudioWrapperVST3ProgramParameter::CAudioWrapperVST3ProgramParameter(CAudioParamRegistry& registry,
                                                                     Steinberg::Vst::ParamID id)
    : m_registry(registry)
{
    copyToHost("Program", info.title);
    copyToHost("Program", info.shortTitle);
    info.id = id;
    info.unitId = Steinberg::Vst::kRootUnitId;
    info.flags = ParameterInfo::kIsList | ParameterInfo::kIsProgramChange;
    info.stepCount = static_cast<Steinberg::int32>(lastIndex());
    showCurrent();
}

double CAudioWrapperVST3ProgramParameter::lastIndex() const
{
    return std::max(m_registry.getProgramCount() - 1, 0);
}

int CAudioWrapperVST3ProgramParameter::indexOf(ParamValue value) const
{
    return static_cast<int>(roundHalfAway(toPlain(std::clamp(value, 0.0, 1.0))));
}

bool CAudioWrapperVST3ProgramParameter::setNormalized(ParamValue value)
{
    if (!std::isfinite(value))
        return false;
    const int index = indexOf(value);
    if (index != m_registry.getCurrentProgram()) {
        if (CErrorPtr failed = m_registry.setCurrentProgram(index, nullptr)) {
            reportError(std::move(failed));
            return false;
        }
    }
    return Parameter::setNormalized(toNormalized(index));
}

void CAudioWrapperVST3ProgramParameter::showCurrent()
{
    Parameter::setNormalized(toNormalized(m_registry.getCurrentProgram()));
}

void CAudioWrapperVST3ProgramParameter::toString(ParamValue value, Steinberg::Vst::String128 text) const
{
    copyToHost(visibleName(m_registry.getPresetName(indexOf(value))), text);
}

bool CAudioWrapperVST3ProgramParameter::fromString(const Steinberg::Vst::TChar* text, ParamValue& value) const
{
    const CString name = textOfHost(text).trimmed();
    for (int index = 0; index < m_registry.getProgramCount(); ++index) {
        if (visibleName(m_registry.getPresetName(index)).trimmed() == name) {
            value = toNormalized(index);
            return true;
        }
    }
    return false;
}

ParamValue CAudioWrapperVST3ProgramParameter::toPlain(ParamValue value) const
{
    return lastIndex() * value;
}

ParamValue CAudioWrapperVST3ProgramParameter::toNormalized(ParamValue plain) const
{
    return lastIndex() > 0.0 ? plain / lastIndex() : 0.0;
}

} // namespace qrb
