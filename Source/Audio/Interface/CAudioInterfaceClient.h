// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Interface/CGroupNamesParamListener.h"
#include "Audio/Interface/CParamInterfaceClient.h"
#include "Audio/Viz/CAudioInterfaceVizRequests.h"

#include <cstdint>

namespace qrb {

class CAudioInterfaceVizProcessor;

/// Editor side of an interface (tag audio:interface-client) with visualisation and the instance's setup, of which it
/// raises the events "update-internal-channel-count", "update-group-count", "update-io-channel-counts" and
/// "update-sample-rate".
class CAudioInterfaceClient : public CParamInterfaceClient, public CAudioInterfaceVizRequests {
public:
    static void declare(CObjectClassInfo& info);

    CAudioInterfaceClient();
    ~CAudioInterfaceClient() override;

    CErrorPtr initChilds() override;
    void unlink() override;

    std::int32_t listenViz(std::int32_t kind, const CString& name) override;
    void unlistenViz(std::int32_t id) override;
    void requestVizData(double time) override;
    void requestExportSlotNames() override;
    void setVizProcessor(CAudioInterfaceVizProcessor* processor) override { m_vizProcessor = processor; }
    /// Asks the instance to take the names of channels from the host.
    void importChannelLabels();

    [[nodiscard]] std::int32_t getInternalChannelCount() const { return m_internalChannelCount; }
    [[nodiscard]] std::int32_t getGroupCount() const { return m_groupCount; }
    [[nodiscard]] std::int32_t getInputChannelCount() const { return m_inputChannelCount; }
    [[nodiscard]] std::int32_t getOutputChannelCount() const { return m_outputChannelCount; }
    [[nodiscard]] std::int32_t getSidechainChannelCount() const { return m_sidechainChannelCount; }
    /// Samples a second.
    [[nodiscard]] double getSampleRate() const { return m_sampleRate; }
    /// What users call a group: its name, or its number from 1 where groups have no names.
    [[nodiscard]] CString getGroupName(std::int32_t group) const;

    // Handlers of messages.
    CErrorPtr onStartViz();
    CErrorPtr onStopViz();
    CErrorPtr onClearClient();
    CErrorPtr onUpdateInternalChannelCount();
    CErrorPtr onUpdateGroupCount();
    CErrorPtr onUpdateIOChannelCounts();
    CErrorPtr onUpdateSampleRate();
    CErrorPtr onVizData();
    CErrorPtr onExportSlotNames();

private:
    void request(const char* event);

    CParamInterfaceIds m_vizIds;
    CAudioInterfaceVizProcessor* m_vizProcessor = nullptr;
    CGroupNamesParamListener m_groupNames;
    std::int32_t m_internalChannelCount = 2;
    std::int32_t m_groupCount = 2;
    std::int32_t m_inputChannelCount = 2;
    std::int32_t m_outputChannelCount = 2;
    std::int32_t m_sidechainChannelCount = 0;
    double m_sampleRate = 44100.0;
};

} // namespace qrb
