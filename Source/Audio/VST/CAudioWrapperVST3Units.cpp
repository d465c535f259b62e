// SPDX-License-Identifier: GPL-3.0-or-later
// The one unit and its programs.
#include "Audio/Presets/CAudioParamRegistry.h"
#include "Audio/VST/CAudioWrapperVST3.h"
#include "Audio/VST/CAudioWrapperVST3ProgramParameter.h"
#include "Audio/VST/VstText.h"

namespace qrb {

using namespace Steinberg;      // NOLINT(google-build-using-namespace)
using namespace Steinberg::Vst; // NOLINT(google-build-using-namespace)

constexpr ProgramListID kListId = CAudioWrapperVST3ProgramParameter::kProgramListId;

int32 PLUGIN_API CAudioWrapperVST3::getUnitCount()
{
    return 1;
}

tresult PLUGIN_API CAudioWrapperVST3::getUnitInfo(int32 index, UnitInfo& info)
{
    if (index != 0)
        return kResultFalse;
    info.id = kRootUnitId;
    info.parentUnitId = kNoParentUnitId;
    info.programListId = kListId;
    copyToHost("Root", info.name);
    return kResultTrue;
}

int32 PLUGIN_API CAudioWrapperVST3::getProgramListCount()
{
    return 1;
}

tresult PLUGIN_API CAudioWrapperVST3::getProgramListInfo(int32 index, ProgramListInfo& info)
{
    if (index != 0 || paramRegistry() == nullptr)
        return kResultFalse;
    info.id = kListId;
    info.programCount = paramRegistry()->getProgramCount();
    copyToHost("Programs", info.name);
    return kResultTrue;
}

tresult PLUGIN_API CAudioWrapperVST3::getProgramName(ProgramListID listId, int32 index, String128 name)
{
    const bool isKnown =
        listId == kListId && m_programParam != nullptr && index >= 0 && index < paramRegistry()->getProgramCount();
    if (!isKnown)
        return kResultFalse;
    m_programParam->toString(m_programParam->toNormalized(index), name);
    return kResultTrue;
}

tresult PLUGIN_API CAudioWrapperVST3::getProgramInfo(ProgramListID, int32, Steinberg::Vst::CString, String128)
{
    return kResultFalse;
}

tresult PLUGIN_API CAudioWrapperVST3::hasProgramPitchNames(ProgramListID, int32)
{
    return kResultFalse;
}

tresult PLUGIN_API CAudioWrapperVST3::getProgramPitchName(ProgramListID, int32, int16, String128)
{
    return kResultFalse;
}

UnitID PLUGIN_API CAudioWrapperVST3::getSelectedUnit()
{
    return kRootUnitId;
}

tresult PLUGIN_API CAudioWrapperVST3::selectUnit(UnitID unit)
{
    return unit == kRootUnitId ? kResultTrue : kResultFalse;
}

tresult PLUGIN_API CAudioWrapperVST3::getUnitByBus(MediaType, BusDirection, int32, int32, UnitID& unit)
{
    unit = kRootUnitId;
    return kResultTrue;
}

tresult PLUGIN_API CAudioWrapperVST3::setUnitProgramData(int32, int32, IBStream*)
{
    return kResultFalse;
}

} // namespace qrb
