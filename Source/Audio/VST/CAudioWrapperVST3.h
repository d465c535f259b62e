// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioWrapper.h"
#include "Audio/VST/BusLayout.h"
#include "Audio/VST/CIdleTimer.h"
#include "Audio/VST/CModuleHold.h"
#include "Audio/VST/CSingleComponentEffect.h"

#include <pluginterfaces/vst/ivstparameterchanges.h>
#include <pluginterfaces/vst/ivstunits.h>

#include <array>
#include <atomic>

namespace qrb {

class CAudioWrapperVST3Parameter;
class CAudioWrapperVST3ProgramParameter;

/// The plug-in as a VST 3 host sees it. The host is called on its main thread only, which is the owner's, outside all
/// locks: by the host's run loop if it gives one, and at the end of its calls on that thread. Not of setParamNormalized():
/// hosts hold locks there that they take again when they are called back.
class CAudioWrapperVST3 final : private CModuleHold,
                                public CSingleComponentEffect,
                                public Steinberg::Vst::IUnitInfo,
                                public CAudioWrapper {
public:
    /// Where the host's run loop may be had, if not from the context of initialize(); may be null.
    explicit CAudioWrapperVST3(Steinberg::FUnknown* factoryContext);
    ~CAudioWrapperVST3() override;

    Steinberg::tresult PLUGIN_API initialize(Steinberg::FUnknown* context) override;
    Steinberg::tresult PLUGIN_API terminate() override;
    Steinberg::tresult PLUGIN_API activateBus(Steinberg::Vst::MediaType type, Steinberg::Vst::BusDirection dir,
                                              Steinberg::int32 index, Steinberg::TBool state) override;
    Steinberg::tresult PLUGIN_API setActive(Steinberg::TBool state) override;
    Steinberg::tresult PLUGIN_API setState(Steinberg::IBStream* state) override;
    Steinberg::tresult PLUGIN_API getState(Steinberg::IBStream* state) override;

    Steinberg::tresult PLUGIN_API setBusArrangements(Steinberg::Vst::SpeakerArrangement* inputs,
                                                     Steinberg::int32 inputCount,
                                                     Steinberg::Vst::SpeakerArrangement* outputs,
                                                     Steinberg::int32 outputCount) override;
    Steinberg::tresult PLUGIN_API canProcessSampleSize(Steinberg::int32 size) override;
    Steinberg::uint32 PLUGIN_API getLatencySamples() override;
    Steinberg::tresult PLUGIN_API setupProcessing(Steinberg::Vst::ProcessSetup& setup) override;
    Steinberg::tresult PLUGIN_API setProcessing(Steinberg::TBool state) override;
    Steinberg::tresult PLUGIN_API process(Steinberg::Vst::ProcessData& data) override;
    Steinberg::uint32 PLUGIN_API getTailSamples() override;
    Steinberg::uint32 PLUGIN_API getProcessContextRequirements() override;

    Steinberg::tresult PLUGIN_API setParamNormalized(Steinberg::Vst::ParamID id,
                                                     Steinberg::Vst::ParamValue value) override;
    Steinberg::tresult PLUGIN_API getParamStringByValue(Steinberg::Vst::ParamID id, Steinberg::Vst::ParamValue value,
                                                        Steinberg::Vst::String128 text) override;
    Steinberg::tresult PLUGIN_API setComponentHandler(Steinberg::Vst::IComponentHandler* handler) override;

    Steinberg::int32 PLUGIN_API getUnitCount() override;
    Steinberg::tresult PLUGIN_API getUnitInfo(Steinberg::int32 index, Steinberg::Vst::UnitInfo& info) override;
    Steinberg::int32 PLUGIN_API getProgramListCount() override;
    Steinberg::tresult PLUGIN_API getProgramListInfo(Steinberg::int32 index,
                                                     Steinberg::Vst::ProgramListInfo& info) override;
    Steinberg::tresult PLUGIN_API getProgramName(Steinberg::Vst::ProgramListID listId, Steinberg::int32 index,
                                                 Steinberg::Vst::String128 name) override;
    Steinberg::tresult PLUGIN_API getProgramInfo(Steinberg::Vst::ProgramListID listId, Steinberg::int32 index,
                                                 Steinberg::Vst::CString attribute,
                                                 Steinberg::Vst::String128 value) override;
    Steinberg::tresult PLUGIN_API hasProgramPitchNames(Steinberg::Vst::ProgramListID listId,
                                                       Steinberg::int32 index) override;
    Steinberg::tresult PLUGIN_API getProgramPitchName(Steinberg::Vst::ProgramListID listId, Steinberg::int32 index,
                                                      Steinberg::int16 pitch, Steinberg::Vst::String128 name) override;
    Steinberg::Vst::UnitID PLUGIN_API getSelectedUnit() override;
    Steinberg::tresult PLUGIN_API selectUnit(Steinberg::Vst::UnitID unit) override;
    Steinberg::tresult PLUGIN_API getUnitByBus(Steinberg::Vst::MediaType type, Steinberg::Vst::BusDirection dir,
                                               Steinberg::int32 bus, Steinberg::int32 channel,
                                               Steinberg::Vst::UnitID& unit) override;
    Steinberg::tresult PLUGIN_API setUnitProgramData(Steinberg::int32 listOrUnit, Steinberg::int32 index,
                                                     Steinberg::IBStream* data) override;

    using CSingleComponentEffect::beginEdit;
    using CSingleComponentEffect::endEdit;
    void onLatencyChange() override;
    void onExtParamChange(std::int32_t index, double normal) override;
    void onProgramChange() override;
    void beginEdit(std::int32_t index) override;
    void endEdit(std::int32_t index) override;

    DEFINE_INTERFACES
    DEF_INTERFACE(Steinberg::Vst::IUnitInfo)
    END_DEFINE_INTERFACES(CSingleComponentEffect)
    REFCOUNT_METHODS(CSingleComponentEffect)

private:
    /// Whether the host may be called back from within its own call.
    enum class ECallBack { now, later };
    /// A call of the host. On the owner's thread what waits of the audio comes before it, as it was earlier, and the
    /// owner's work behind it.
    class CHostCall {
    public:
        explicit CHostCall(CAudioWrapperVST3& wrapper, ECallBack callBack = ECallBack::now)
            : m_wrapper(wrapper), m_callBack(callBack)
        {
            m_wrapper.takeProgramWish();
        }
        ~CHostCall() { m_wrapper.runOwner(m_callBack); }
        CHostCall(const CHostCall&) = delete;
        CHostCall& operator=(const CHostCall&) = delete;

    private:
        CAudioWrapperVST3& m_wrapper;
        ECallBack m_callBack;
    };
    static constexpr std::size_t kMaxChannels = CPluginProject::kMaxInternalChannels;
    using CChannelPointers = std::array<void*, kMaxChannels>;

    void runOwner(ECallBack callBack = ECallBack::now);
    void takeProgramWish();
    void tellHost();
    void addParameters();
    void addBuses(const CBusLayout& layout);
    [[nodiscard]] CBusLayout currentLayout();
    void announceLayout();
    void announceFormats(bool isDouble, const void* const* sidechain = nullptr);
    [[nodiscard]] CAudioWrapperVST3Parameter* hostParam(std::int32_t index);

    void takeContext(const Steinberg::Vst::ProcessData& data);
    void takeChanges(const Steinberg::Vst::ProcessData& data, bool isAtOnce);
    void takeQueue(Steinberg::Vst::IParamValueQueue& queue, bool isAtOnce);
    void takePoint(Steinberg::Vst::IParamValueQueue& queue, Steinberg::int32 point, bool isAtOnce);

    [[nodiscard]] CString fullName() const { return "plugin"; }

    std::uint64_t m_owner = 0;
    bool m_isInitialized = false;
    bool m_isOwnerRunning = false;
    Steinberg::IPtr<Steinberg::FUnknown> m_factoryContext;
    Steinberg::IPtr<CIdleTimer> m_timer;
    CAudioWrapperVST3ProgramParameter* m_programParam = nullptr; ///< among the controller's parameters

    // Channels of the buses, told while nothing is processed.
    int m_inputCount = 0;
    int m_outputCount = 0;
    int m_sidechainCount = 0; ///< 0 while the bus is off

    std::atomic<bool> m_isProcessing{false};
    std::atomic<bool> m_isLatencyNew{false};
    std::atomic<double> m_programWish{-1.0}; ///< normalised, from the audio thread; negative for none
    bool m_areValuesNew = false;
    bool m_areNamesNew = false;
    CArray<std::uint8_t, 80> m_gestures; ///< how often each parameter is in the user's hand
};

} // namespace qrb
