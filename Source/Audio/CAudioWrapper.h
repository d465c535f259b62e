// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioLineSource.h"
#include "Audio/CAudioProcessPlan.h"
#include "Audio/CExternalEventQueue.h"
#include "Audio/CHostBusFormat.h"
#include "Audio/CHostParam.h"
#include "Audio/CPluginProject.h"
#include "Audio/HostParams/CAudioExtParamHostBridge.h"
#include "Audio/HostParams/CDefaultRouting.h"
#include "Audio/HostParams/CGestureTarget.h"
#include "Audio/Interface/CAudioInterfaceDataProvider.h"
#include "Core/CError.h"
#include "Core/COwnedUpdateListener.h"
#include "Core/CQrbStdAllocator.h"
#include "Core/CString.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>

namespace qrb {

class CAudioCCTable;
class CAudioEnv;
class CAudioExtParam;
class CAudioExtParamList;
class CAudioInterfaceBase;
class CAudioParamCollector;
class CAudioParamRegistry;
class CAudioProcessBase;
class CAudioVizCollector;
class CModOutput;
class CInputStream;
class CObject;
class COutputStream;
class CSampleBufferPool;

/// One instance of the plug-in, whatever the host: its object tree, its two top process nodes and the main loop.
/// A binding derives from it and forwards the host's calls. Created stopped; init() once, then any number of start and
/// stop pairs. Owner: the thread that runs init(), the host's main thread; what runs elsewhere says so.
class CAudioWrapper : public CAudioInterfaceDataProvider {
public:
    /// Most samples that the graph gets at once; longer blocks are cut.
    static constexpr int kMaxSubBlock = 512;

    CAudioWrapper();
    ~CAudioWrapper() override;
    CAudioWrapper(const CAudioWrapper&) = delete;
    CAudioWrapper& operator=(const CAudioWrapper&) = delete;

    /// Builds the instance from the template of the shared tree. After a failure the object is not usable.
    virtual CErrorPtr init();
    /// The latency has changed: the host should ask for it. Thread: audio, or the one that calls start or stop.
    virtual void onLatencyChange();
    /// Ignored by default. Thread: audio.
    virtual void onMidiEvent(const CExternalEvent& event);
    /// Applies a value to the host parameter that the event's index stands for. False if that could not be done without waiting for a
    /// lock: the event, and those behind it, are offered again at the next sub-block. Thread: audio, or the one that
    /// calls start or stop.
    virtual bool onExtParamEvent(const CExternalEvent& event);

    // What a binding tells its host; nothing, for one that has no host. Thread: the owner's, with no lock held.

    /// A host parameter has another value, by somebody else than the host.
    virtual void onExtParamChange(std::int32_t index, double normal);
    /// Another program is selected, by somebody else than the host, or has another name.
    virtual void onProgramChange();
    /// A user takes a host parameter into the hand, and lets go. They come in pairs, changes in between.
    virtual void beginEdit(std::int32_t index);
    virtual void endEdit(std::int32_t index);
    /// The window should have another size, in pixels. False if the host refuses.
    virtual bool resizeWindow(std::int32_t width, std::int32_t height);

    // Window sizes in pixels. Thread: the owner's.

    [[nodiscard]] std::int32_t windowWidth() const { return m_windowWidth; }
    [[nodiscard]] std::int32_t windowHeight() const { return m_windowHeight; }
    /// Reads the user's scale again and computes the size anew.
    void refreshWindowSize();
    [[nodiscard]] double uiScale() const { return m_uiScale; }
    /// False if the product has no smallest size.
    [[nodiscard]] bool getMinWindowSize(std::int32_t& width, std::int32_t& height) const;
    /// Does nothing in a product whose window has one size.
    void setWindowSizeFromHost(std::int32_t width, std::int32_t height);

    /// The host has reported its layout, with a name for each channel that can carry sound: the routing follows as long as
    /// the user has left it alone. Thread: the owner's.
    void reportLayout(const CArray<CString>& inputLabels, const CArray<CString>& sidechainLabels);

    /// Hertz. While stopped or between blocks.
    void setSampleRate(double rate);
    /// Formats of the main and the side-chain input from the next block on, and the side-chain's buffers for it.
    /// Thread: that of processBlock.
    void setInputs(const CHostBusFormat& main, const CHostBusFormat& sidechain = {},
                   const void* const* sidechainBuffers = nullptr);
    /// Format of the output from the next block on. Thread: that of processBlock.
    void setOutputs(const CHostBusFormat& format);
    /// Both run one sample of silence, so that the latency is known when they return.
    void start();
    void stop();
    /// Tells the graph whether time matters, and so how much oversampling it may do. Thread: that of processBlock, or
    /// any while stopped.
    void setOffline(bool isOffline);
    /// Thread: as setOffline.
    void setHostBPM(double bpm);
    /// Thread: as setOffline.
    void setHostRecording(bool isRecording);

    /// Queues an event for the next block. Thread: that of processBlock.
    void addEvent(const CExternalEvent& event) { m_events.add(event); }
    /// Runs one block. A channel without input pointer reads as silence, one without output pointer is skipped; without
    /// any channels in or out nothing runs and the events wait for the next block. Thread: audio.
    void processBlock(const void* const* inputs, void* const* outputs, int sampleCount) noexcept;

    /// Latency in samples; the host has seen it now. Thread: any.
    int getLatencySamples();
    /// True since a latency change until getLatencySamples() is called. Thread: any.
    [[nodiscard]] bool isLatencyChangePending() const { return m_isLatencyChangePending.load(); }
    /// Samples that sound on after the input has ended; 0 where the product tells none.
    [[nodiscard]] std::int64_t getTailSamples() const;
    /// Thread: any.
    [[nodiscard]] bool isActive() const;
    /// The whole state of the instance for the host: one chunk. Thread: any.
    CErrorPtr saveState(COutputStream& out);
    /// Brings a saved state back; everything stays as it was on failure. Thread: any.
    CErrorPtr loadState(CInputStream& in);
    /// Does what blocks have left for the owner's thread: listeners, application data. To be called from time to time.
    void runIdle();

    // What clients of the interface are told of the instance. Thread: any.
    [[nodiscard]] std::int32_t getInternalChannelCount() override { return m_project.internalChannelCount; }
    [[nodiscard]] std::int32_t getGroupCount() override { return m_project.groupCount; }
    [[nodiscard]] std::int32_t getInputChannelCount() override { return m_toldInputs; }
    [[nodiscard]] std::int32_t getOutputChannelCount() override { return m_toldOutputs; }
    [[nodiscard]] std::int32_t getSidechainChannelCount() override { return m_toldSidechain; }
    [[nodiscard]] double getSampleRate() override;
    void onBeginChange(CAudioParam& param, std::int32_t group, std::int32_t element) override;
    void onEndChange(CAudioParam& param, std::int32_t group, std::int32_t element) override;
    void importChannelLabels() override;
    /// Brings the routing in step with the reported layout. Thread: any.
    void applyDefaultRouting(const CAudioParamRoute& route) { m_routing.applyDefaultRouting(route); }

    [[nodiscard]] const CPluginProject& project() const { return m_project; }
    [[nodiscard]] CObject& root() { return *m_root; }
    [[nodiscard]] CAudioEnv& env() { return *m_env; }
    [[nodiscard]] CAudioParamCollector& paramCollector() { return *m_paramCollector; }
    /// How quiet blocks run. Thread: audio.
    [[nodiscard]] CAudioProcessPlan& plan() { return m_plan; }
    /// The master registry, once init() is done.
    [[nodiscard]] CAudioParamRegistry* paramRegistry() { return m_paramRegistry; }
    [[nodiscard]] CAudioInterfaceBase& interfaceBase() { return *m_interfaceBase; }
    /// What the host sees, in the order of its indices.
    [[nodiscard]] std::span<CAudioExtParam* const> extParams() const;
    /// What the user demands of all plug-ins; without meaning here.
    [[nodiscard]] bool isTwoChannelForced() const { return m_isTwoChannelForced; }
    /// Calls of the library's allocator during the last block. Thread: that of processBlock.
    [[nodiscard]] std::uint64_t getBlockAllocations() const { return m_blockAllocations; }

protected:
    /// Ends what clients of the interface have going on, and takes no more of their requests. A binding that is told of
    /// gestures calls it first in its destructor: behind that only this class is there to hear of their ends.
    void disconnectClients();

private:
    class CProgramChangeListener : public COwnedUpdateListener<CAudioWrapper> {
    public:
        using COwnedUpdateListener::COwnedUpdateListener;
        void onUpdate(const CUpdateInfo& info) override;
    };
    class CHostBridge final : public CAudioExtParamHostBridge {
    public:
        explicit CHostBridge(CAudioWrapper& wrapper) : m_wrapper(wrapper) {}
        void onExtParamChange(std::int32_t index, double normal) override { m_wrapper.onExtParamChange(index, normal); }

    private:
        CAudioWrapper& m_wrapper;
    };
    class CWinSizeParamListener : public COwnedUpdateListener<CAudioWrapper> {
    public:
        using COwnedUpdateListener::COwnedUpdateListener;
        void onUpdate(const CUpdateInfo& info) override;
    };

    CErrorPtr createTree();
    CErrorPtr findObjects();
    void attachHostParams();
    CErrorPtr createNodes();
    void attachExtParams();
    void attachWindowSize();
    void leaveTree();
    void readSettings();

    void setChannelCounts(int main, int sidechain);
    void updateOversamplingMode();
    void flushHostParams();
    void noteNewSetup();
    void tellSetup();
    void deferGesture(CAudioParam& param, std::int32_t group, std::int32_t element, CGestureTarget& target);
    void computeWindowSize();
    void setClientsActive(bool isActive);

    void announceInputs();
    void primeGraph();
    [[nodiscard]] bool canProcess(const void* const* inputs, void* const* outputs) const;
    void runSubBlocks(const void* const* inputs, void* const* outputs, int sampleCount);
    [[nodiscard]] bool applyEvents(int position);
    void takeChanges();
    void sendInputs(const void* const* inputs, int position, int count);
    void advanceTime(int count);

    [[nodiscard]] CString fullName() const;

    CPluginProject m_project;
    CObject* m_root = nullptr; // released behind the nodes, which read its parameters
    CAudioEnv* m_env = nullptr;
    CAudioParamCollector* m_paramCollector = nullptr;
    CAudioVizCollector* m_vizCollector = nullptr;
    CAudioInterfaceBase* m_interfaceBase = nullptr;
    CAudioExtParamList* m_extParams = nullptr;
    CAudioCCTable* m_ccTable = nullptr;
    CAudioParamRegistry* m_paramRegistry = nullptr;
    /// Of each parameter that the host sees, the indices by element * 256 + group.
    CMap<const CAudioParam*, CMap<std::int32_t, std::int32_t>> m_extParamIndices;
    CHostBridge m_hostBridge{*this};
    CGestureTarget m_beginTarget{*this, &CAudioWrapper::beginEdit};
    CGestureTarget m_endTarget{*this, &CAudioWrapper::endEdit};
    CDefaultRouting m_routing;

    std::unique_ptr<CSampleBufferPool> m_pool; // outlives all that holds its buffers
    CAudioLineSource m_inputSource;
    CAudioGraphChanges m_graphChanges;
    CAudioProcessPlan m_plan{m_graphChanges};
    std::unique_ptr<CAudioProcessBase> m_mainNode;
    std::unique_ptr<CAudioProcessBase> m_lastNode;
    CModOutput* m_outputNode = nullptr; // the same as m_lastNode

    CHostBusFormat m_inputFormat;
    CHostBusFormat m_sidechainFormat;
    const void* const* m_sidechainBuffers = nullptr;
    std::atomic<bool> m_isReconfigureDue{true};
    // For clients of the interface, which ask from other threads.
    std::atomic<std::int32_t> m_toldInputs{0};
    std::atomic<std::int32_t> m_toldSidechain{0};
    std::atomic<std::int32_t> m_toldOutputs{0};
    std::atomic<bool> m_isSetupNew{false};
    CExternalEventQueue m_events;

    bool m_isOffline = false;
    int m_oversamplingLevel = 1;
    std::optional<int> m_oversamplingMode;
    bool m_isTwoChannelForced = false;
    double m_hostBPM = -1.0;
    CHostParam m_hostOversamplingMode;
    CHostParam m_hostOffline;
    CHostParam m_hostLatencyChange;
    CHostParam m_hostBPMParam;
    CHostParam m_hostRecordingParam;

    CAudioParam* m_windowSizeParam = nullptr;
    double m_uiScale = 1.0;
    std::int32_t m_windowWidth = 0;
    std::int32_t m_windowHeight = 0;
    std::atomic<bool> m_isWindowSizeNew{false};
    std::atomic<bool> m_isProgramChangePending{false};

    std::atomic<bool> m_isLatencyChangePending{false};
    std::uint64_t m_blockAllocations = 0;

    CProgramChangeListener m_programListener{*this};
    CWinSizeParamListener m_windowSizeListener{*this};
};

} // namespace qrb
