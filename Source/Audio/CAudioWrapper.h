// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CExternalEventQueue.h"
#include "Audio/CHostBusFormat.h"
#include "Audio/CPluginProject.h"
#include "Core/CCheckedObject.h"
#include "Core/CError.h"

#include <atomic>
#include <cstdint>
#include <memory>

namespace qrb {

class CAudioEnv;
class CAudioParam;
class CAudioParamCollector;
class CAudioProcess;
class CModOutput;
class CObject;
class CSampleBufferPool;

/// One instance of the plug-in, whatever the host: its object tree, its two top process nodes and the main loop.
/// A binding derives from it and forwards the host's calls. Created stopped; init() once, then any number of start and
/// stop pairs. Owner: the host's main thread; what runs elsewhere says so.
class CAudioWrapper : public CCheckedObject {
public:
    CAudioWrapper();
    ~CAudioWrapper() override;
    CAudioWrapper(const CAudioWrapper&) = delete;
    CAudioWrapper& operator=(const CAudioWrapper&) = delete;

    /// Builds the instance from the template of the shared tree. After a failure the object is not usable.
    virtual CErrorPtr init();
    /// The latency has changed: the host should ask for it. Thread: audio, or the one that calls start or stop.
    virtual void onLatencyChange();
    /// Thread: audio. Ignored by default.
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
    /// Tells the graph whether time matters, and so how much oversampling it may do.
    void setOffline(bool isOffline);
    void setHostBPM(double bpm);

    /// Queues an event for the next block. Thread: that of processBlock.
    void addEvent(const CExternalEvent& event) { m_events.add(event); }
    /// Runs one block. A channel without input pointer reads as silence, one without output pointer is skipped; without
    /// any channels in or out nothing runs and the events wait for the next block. Thread: audio.
    void processBlock(const void* const* inputs, void* const* outputs, int sampleCount) noexcept;

    /// Latency in samples; the host has seen it now. Thread: any.
    int getLatencySamples();
    /// True since a latency change until getLatencySamples() is called. Thread: any.
    [[nodiscard]] bool isLatencyChangePending() const { return m_isLatencyChanged.load(); }
    /// Samples that sound on after the input has ended; 0 where the product tells none.
    [[nodiscard]] std::int64_t getTailSamples() const;
    [[nodiscard]] bool isActive() const;

    [[nodiscard]] const CPluginProject& project() const { return m_project; }
    [[nodiscard]] CObject& root() { return *m_root; }
    [[nodiscard]] CAudioEnv& env() { return *m_env; }
    [[nodiscard]] CAudioParamCollector& paramCollector() { return *m_paramCollector; }
    [[nodiscard]] const CString& fullName() const { return m_name; }
    /// Calls of the library's allocator during the last block. Thread: that of processBlock.
    [[nodiscard]] std::uint64_t getBlockAllocations() const { return m_blockAllocations; }

private:
    CErrorPtr createTree();
    CErrorPtr findObjects();
    void findParams();
    CErrorPtr createNodes();
    void readSettings();

    void applyConfiguration();
    void primeGraph();
    bool applyEvents();
    void takeExchangedLists(int sampleCount, bool isFirst);
    void fillInputs(const void* const* inputs, int position, int count);
    void copyOutputs(void* const* outputs, int position, int count);
    void updateOversamplingMode();
    void flushLatencyChange();

    CString m_name;
    CPluginProject m_project;
    CObject* m_root = nullptr; // released by the destructor, behind the nodes
    CAudioEnv* m_env = nullptr;
    CAudioParamCollector* m_paramCollector = nullptr;
    std::atomic<bool> m_isLatencyChanged{false};
    CExternalEventQueue m_events;
    std::uint64_t m_blockAllocations = 0;
};

} // namespace qrb
