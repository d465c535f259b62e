// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioLineSource.h"
#include "Audio/CAudioProcessPlan.h"
#include "Audio/CExternalEventQueue.h"
#include "Audio/CHostBusFormat.h"
#include "Audio/CHostParam.h"
#include "Audio/CPluginProject.h"
#include "Audio/Interface/CAudioInterfaceDataProvider.h"
#include "Core/CError.h"
#include "Core/CString.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>

namespace qrb {

class CAudioEnv;
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
    /// Applies a value to what the event's index stands for. False if that could not be done without waiting for a
    /// lock: the event, and those behind it, are offered again at the next sub-block. Thread: audio, or the one that
    /// calls start or stop.
    virtual bool onExtParamEvent(const CExternalEvent& event) = 0;

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
    /// Nothing, for a binding that has no gestures to tell.
    void onBeginChange(CAudioParam& param, std::int32_t group, std::int32_t element) override;
    void onEndChange(CAudioParam& param, std::int32_t group, std::int32_t element) override;
    /// Nothing, for a binding that knows no labels.
    void importChannelLabels() override;

    [[nodiscard]] const CPluginProject& project() const { return m_project; }
    [[nodiscard]] CObject& root() { return *m_root; }
    [[nodiscard]] CAudioEnv& env() { return *m_env; }
    [[nodiscard]] CAudioParamCollector& paramCollector() { return *m_paramCollector; }
    /// How quiet blocks run. Thread: audio.
    [[nodiscard]] CAudioProcessPlan& plan() { return m_plan; }
    /// The master registry; null for a product without presets.
    [[nodiscard]] CAudioParamRegistry* paramRegistry() { return m_paramRegistry; }
    /// Calls of the library's allocator during the last block. Thread: that of processBlock.
    [[nodiscard]] std::uint64_t getBlockAllocations() const { return m_blockAllocations; }

protected:
    /// Ends what clients of the interface have going on, and takes no more of their requests. A binding that is told of
    /// gestures calls it first in its destructor: behind that only this class is there to hear of their ends.
    void disconnectClients();

private:
    CErrorPtr createTree();
    CErrorPtr findObjects();
    void attachHostParams();
    CErrorPtr createNodes();
    void readSettings();

    void setChannelCounts(int main, int sidechain);
    void updateOversamplingMode();
    void flushHostParams();
    void noteNewSetup();
    void tellSetup();
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
    CAudioParamRegistry* m_paramRegistry = nullptr;
    CAudioVizCollector* m_vizCollector = nullptr;   ///< null in a product without visualisation
    CAudioInterfaceBase* m_interfaceBase = nullptr; ///< null in a product without editor

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
    double m_hostBPM = -1.0;
    CHostParam m_hostOversamplingMode;
    CHostParam m_hostOffline;
    CHostParam m_hostLatencyChange;
    CHostParam m_hostBPMParam;

    std::atomic<bool> m_isLatencyChangePending{false};
    std::uint64_t m_blockAllocations = 0;
};

} // namespace qrb
