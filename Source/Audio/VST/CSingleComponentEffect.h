// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <pluginterfaces/vst/ivstaudioprocessor.h>
#include <pluginterfaces/vst/ivstcomponent.h>
#include <public.sdk/source/vst/vstbus.h>
#include <public.sdk/source/vst/vsteditcontroller.h>

namespace qrb {

/// Component and edit controller in one object: the controller with the buses of a component.
class CSingleComponentEffect : public Steinberg::Vst::EditController,
                               public Steinberg::Vst::IComponent,
                               public Steinberg::Vst::IAudioProcessor,
                               public Steinberg::Vst::IProcessContextRequirements {
public:
    Steinberg::tresult PLUGIN_API initialize(Steinberg::FUnknown* context) override;
    Steinberg::tresult PLUGIN_API terminate() override;
    Steinberg::tresult PLUGIN_API setState(Steinberg::IBStream* state) override = 0;
    Steinberg::tresult PLUGIN_API getState(Steinberg::IBStream* state) override = 0;
    /// Nothing to do: the component's state has reached the controller already.
    Steinberg::tresult PLUGIN_API setComponentState(Steinberg::IBStream* state) override;

    Steinberg::tresult PLUGIN_API getControllerClassId(Steinberg::TUID classId) override;
    Steinberg::tresult PLUGIN_API setIoMode(Steinberg::Vst::IoMode mode) override;
    Steinberg::int32 PLUGIN_API getBusCount(Steinberg::Vst::MediaType type, Steinberg::Vst::BusDirection dir) override;
    Steinberg::tresult PLUGIN_API getBusInfo(Steinberg::Vst::MediaType type, Steinberg::Vst::BusDirection dir,
                                             Steinberg::int32 index, Steinberg::Vst::BusInfo& info) override;
    Steinberg::tresult PLUGIN_API getRoutingInfo(Steinberg::Vst::RoutingInfo& in,
                                                 Steinberg::Vst::RoutingInfo& out) override;
    Steinberg::tresult PLUGIN_API activateBus(Steinberg::Vst::MediaType type, Steinberg::Vst::BusDirection dir,
                                              Steinberg::int32 index, Steinberg::TBool state) override;
    Steinberg::tresult PLUGIN_API getBusArrangement(Steinberg::Vst::BusDirection dir, Steinberg::int32 index,
                                                    Steinberg::Vst::SpeakerArrangement& arrangement) override;

    DEFINE_INTERFACES
    DEF_INTERFACE(Steinberg::Vst::IComponent)
    DEF_INTERFACE(Steinberg::Vst::IAudioProcessor)
    DEF_INTERFACE(Steinberg::Vst::IProcessContextRequirements)
    END_DEFINE_INTERFACES(EditController)
    REFCOUNT_METHODS(EditController)

protected:
    /// Null for a bus that is not there.
    [[nodiscard]] Steinberg::Vst::Bus* findBus(Steinberg::Vst::MediaType type, Steinberg::Vst::BusDirection dir,
                                               Steinberg::int32 index);
    [[nodiscard]] Steinberg::Vst::AudioBus* findAudioBus(Steinberg::Vst::BusDirection dir, Steinberg::int32 index);

    Steinberg::Vst::BusList m_audioInputs{Steinberg::Vst::kAudio, Steinberg::Vst::kInput};
    Steinberg::Vst::BusList m_audioOutputs{Steinberg::Vst::kAudio, Steinberg::Vst::kOutput};
    Steinberg::Vst::BusList m_eventInputs{Steinberg::Vst::kEvent, Steinberg::Vst::kInput};

private:
    [[nodiscard]] Steinberg::Vst::BusList* busList(Steinberg::Vst::MediaType type, Steinberg::Vst::BusDirection dir);
};

} // namespace qrb
