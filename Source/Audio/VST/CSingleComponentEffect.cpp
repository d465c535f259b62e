// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/VST/CSingleComponentEffect.h"

namespace qrb {

using namespace Steinberg;      // NOLINT(google-build-using-namespace)
using namespace Steinberg::Vst; // NOLINT(google-build-using-namespace)

tresult PLUGIN_API CSingleComponentEffect::initialize(FUnknown* context)
{
    return EditController::initialize(context);
}

tresult PLUGIN_API CSingleComponentEffect::terminate()
{
    m_audioInputs.clear();
    m_audioOutputs.clear();
    m_eventInputs.clear();
    return EditController::terminate();
}

tresult PLUGIN_API CSingleComponentEffect::setComponentState(IBStream*)
{
    return kResultOk;
}

tresult PLUGIN_API CSingleComponentEffect::getControllerClassId(TUID)
{
    return kNotImplemented; // no other class than this one
}

tresult PLUGIN_API CSingleComponentEffect::setIoMode(IoMode)
{
    return kNotImplemented;
}

BusList* CSingleComponentEffect::busList(MediaType type, BusDirection dir)
{
    if (type == kAudio)
        return dir == kInput ? &m_audioInputs : dir == kOutput ? &m_audioOutputs : nullptr;
    return type == kEvent && dir == kInput ? &m_eventInputs : nullptr;
}

Bus* CSingleComponentEffect::findBus(MediaType type, BusDirection dir, int32 index)
{
    BusList* const list = busList(type, dir);
    const bool isKnown = list != nullptr && index >= 0 && static_cast<std::size_t>(index) < list->size();
    return isKnown ? (*list)[static_cast<std::size_t>(index)].get() : nullptr;
}

AudioBus* CSingleComponentEffect::findAudioBus(BusDirection dir, int32 index)
{
    return static_cast<AudioBus*>(findBus(kAudio, dir, index));
}

int32 PLUGIN_API CSingleComponentEffect::getBusCount(MediaType type, BusDirection dir)
{
    const BusList* const list = busList(type, dir);
    return list != nullptr ? static_cast<int32>(list->size()) : 0;
}

tresult PLUGIN_API CSingleComponentEffect::getBusInfo(MediaType type, BusDirection dir, int32 index, BusInfo& info)
{
    Bus* const bus = findBus(type, dir, index);
    if (bus == nullptr)
        return kInvalidArgument;
    info.mediaType = type;
    info.direction = dir;
    return bus->getInfo(info) ? kResultTrue : kResultFalse;
}

tresult PLUGIN_API CSingleComponentEffect::getRoutingInfo(RoutingInfo&, RoutingInfo&)
{
    return kNotImplemented;
}

tresult PLUGIN_API CSingleComponentEffect::activateBus(MediaType type, BusDirection dir, int32 index, TBool state)
{
    Bus* const bus = findBus(type, dir, index);
    if (bus == nullptr)
        return kInvalidArgument;
    bus->setActive(state);
    return kResultTrue;
}

tresult PLUGIN_API CSingleComponentEffect::getBusArrangement(BusDirection dir, int32 index,
                                                             SpeakerArrangement& arrangement)
{
    const AudioBus* const bus = findAudioBus(dir, index);
    if (bus == nullptr)
        return kInvalidArgument;
    arrangement = bus->getArrangement();
    return kResultTrue;
}

} // namespace qrb
