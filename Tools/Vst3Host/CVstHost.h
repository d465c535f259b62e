// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Tools/Vst3Host/CComponentHandler.h"
#include "Tools/Vst3Host/CParameterChanges.h"
#include "Tools/Vst3Host/CRunLoop.h"

#include <pluginterfaces/base/smartpointer.h>
#include <pluginterfaces/vst/ivstaudioprocessor.h>
#include <pluginterfaces/vst/ivstcomponent.h>

#include <span>
#include <string>
#include <vector>

namespace Steinberg {
class IPluginFactory;
}

namespace vst3 {

using CChannels = std::vector<std::vector<double>>;

/// One instance of a module's first audio effect in a small host. Thread: the owner's, process() the audio's.
class CVstHost {
public:
    /// Creates and initialises the instance, which may use the run loop if there is one.
    explicit CVstHost(Steinberg::IPluginFactory& factory, CRunLoop* runLoop = nullptr);
    ~CVstHost();
    CVstHost(const CVstHost&) = delete;
    CVstHost& operator=(const CVstHost&) = delete;

    /// Calls that the plug-in has refused though it may not; empty if all is well. Behind a refusal in the constructor
    /// there are no interfaces.
    [[nodiscard]] const std::string& failure() const { return m_failure; }

    [[nodiscard]] bool setLayout(Steinberg::Vst::SpeakerArrangement in, Steinberg::Vst::SpeakerArrangement out,
                                 Steinberg::Vst::SpeakerArrangement sidechain = 3);
    /// Switches the main buses on, and the side-chain's if it is wished.
    void activateBuses(bool isKeyed);
    void setup(double sampleRate, Steinberg::int32 sampleSize, Steinberg::int32 maxFrames = 1024,
               Steinberg::int32 mode = Steinberg::Vst::kRealtime);
    void activate();
    /// Both of the above.
    void start(double sampleRate = 48000.0, Steinberg::int32 sampleSize = Steinberg::Vst::kSample64);
    void stop();

    /// Channels of one block in the format of the set-up, float or double: one pointer a channel.
    struct CBlock {
        std::span<void* const> inputs;
        std::span<void* const> keys; ///< channels of the side-chain
        std::span<void* const> outputs;
        Steinberg::int32 frames = 0;
    };
    /// Plays one block. Without channels only the points go in.
    void process(const CBlock& block, std::span<const CPoint> points);
    /// Plays one block in place; main channels first, then those of the side-chain.
    CChannels play(const CChannels& in, std::size_t mainCount, const std::vector<CPoint>& points = {});

    [[nodiscard]] std::vector<char> save();
    [[nodiscard]] bool restore(std::vector<char> state) const;
    [[nodiscard]] std::string text(Steinberg::Vst::ParamID id, double value);

    Steinberg::IPtr<Steinberg::Vst::IComponent> component;
    Steinberg::IPtr<Steinberg::Vst::IAudioProcessor> processor;
    Steinberg::IPtr<Steinberg::Vst::IEditController> controller;
    CComponentHandler handler;

private:
    void require(Steinberg::tresult result, const char* call);
    template <class T>
    CChannels playAs(const CChannels& in, std::size_t mainCount, std::span<const CPoint> points);

    std::string m_failure;
    bool m_isInitialized = false;
    Steinberg::int32 m_sampleSize = Steinberg::Vst::kSample64;
    Steinberg::int32 m_mode = Steinberg::Vst::kRealtime;
};

/// Text of a host as UTF-8.
[[nodiscard]] std::string narrowText(const Steinberg::Vst::String128 text);
/// The other way round, cut to what fits.
void wideText(const std::string& text, Steinberg::Vst::String128 out);

} // namespace vst3
