// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Tests/VST/CModuleFile.h"

#include <pluginterfaces/gui/iplugview.h>
#include <pluginterfaces/vst/ivstaudioprocessor.h>
#include <pluginterfaces/vst/ivstcomponent.h>
#include <pluginterfaces/vst/ivsteditcontroller.h>
#include <pluginterfaces/vst/ivstparameterchanges.h>
#include <pluginterfaces/vst/ivstunits.h>
#include <public.sdk/source/common/memorystream.h>

#include <array>
#include <string>
#include <vector>

using CChannels = std::vector<std::vector<double>>;

/// What a plug-in tells its host.
class CHandler final : public Steinberg::Vst::IComponentHandler {
public:
    Steinberg::tresult PLUGIN_API beginEdit(Steinberg::Vst::ParamID) override { return ++edits, Steinberg::kResultOk; }
    Steinberg::tresult PLUGIN_API performEdit(Steinberg::Vst::ParamID, Steinberg::Vst::ParamValue) override
    {
        return ++edits, Steinberg::kResultOk;
    }
    Steinberg::tresult PLUGIN_API endEdit(Steinberg::Vst::ParamID) override { return ++edits, Steinberg::kResultOk; }
    Steinberg::tresult PLUGIN_API restartComponent(Steinberg::int32 flags) override
    {
        restarts.push_back(flags);
        return Steinberg::kResultOk;
    }
    Steinberg::tresult PLUGIN_API queryInterface(const Steinberg::TUID, void** out) override
    {
        return *out = nullptr, Steinberg::kNoInterface;
    }
    Steinberg::uint32 PLUGIN_API addRef() override { return 1; } // its host outlives all references
    Steinberg::uint32 PLUGIN_API release() override { return 1; }

    int edits = 0;
    std::vector<Steinberg::int32> restarts;
};

/// A point of automation: parameter, sample of the block, value.
struct CPoint {
    Steinberg::Vst::ParamID id;
    Steinberg::int32 offset;
    double value;
};

/// One instance in a small host.
class CVstHost {
public:
    explicit CVstHost(Steinberg::IPluginFactory& factory);
    ~CVstHost();
    CVstHost(const CVstHost&) = delete;
    CVstHost& operator=(const CVstHost&) = delete;

    [[nodiscard]] bool setLayout(Steinberg::Vst::SpeakerArrangement in, Steinberg::Vst::SpeakerArrangement out,
                                 Steinberg::Vst::SpeakerArrangement sidechain = 3);
    void start(double sampleRate = 48000.0, Steinberg::int32 sampleSize = Steinberg::Vst::kSample64);
    void stop();
    /// Plays one block; main channels first, then those of the side-chain. Without channels only the points go in.
    CChannels play(const CChannels& in, std::size_t mainCount, const std::vector<CPoint>& points = {});
    [[nodiscard]] std::vector<char> save() const;
    [[nodiscard]] bool restore(std::vector<char> state) const;
    [[nodiscard]] std::string text(Steinberg::Vst::ParamID id, double value) const;

    Steinberg::IPtr<Steinberg::Vst::IComponent> component;
    Steinberg::IPtr<Steinberg::Vst::IAudioProcessor> processor;
    Steinberg::IPtr<Steinberg::Vst::IEditController> controller;
    CHandler handler;

private:
    template <class T>
    CChannels playAs(const CChannels& in, std::size_t mainCount, Steinberg::Vst::ProcessData& data);

    Steinberg::int32 m_sampleSize = Steinberg::Vst::kSample64;
};
