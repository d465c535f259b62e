// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Interface/CParamInterfaceBase.h"
#include "Core/COwnedUpdateListener.h"
#include "Core/CString.h"

#include <cstdint>

namespace qrb {

class CAudioInterfaceDataProvider;
class CAudioVizCollector;

/// Engine side of an interface (tag audio:interface-base) that also hands on visualisation, channel counts and the sample
/// rate, and tells the instance about gestures.
class CAudioInterfaceBase : public CParamInterfaceBase {
public:
    static void declare(CObjectClassInfo& info);

    CAudioInterfaceBase();
    ~CAudioInterfaceBase() override;

    CErrorPtr initChilds() override;
    void unlink() override;
    void removeClient(std::uint32_t clientId) override;
    void tellAll(std::uint32_t clientId) override;

    /// The instance, not owned; null while there is none: then nothing is told of it. Waits for a message that is under
    /// way. Thread: the owner's.
    void setDataProvider(CAudioInterfaceDataProvider* provider);

    // Calls of the instance, which reach all clients. Thread: any but audio, with no lock held.

    void startViz();
    void stopViz();
    /// What waits to be shown is of no use any more.
    void clearClients();
    /// Channel counts or the sample rate are others now.
    void tellSetup();

    // Handlers of messages.
    CErrorPtr onListenViz();
    CErrorPtr onUnlistenViz();
    CErrorPtr onRequestVizData();
    CErrorPtr onRequestExportSlotNames();
    CErrorPtr onRequestInternalChannelCount();
    CErrorPtr onRequestGroupCount();
    CErrorPtr onRequestIOChannelCounts();
    CErrorPtr onRequestSampleRate();
    CErrorPtr onImportChannelLabels();

protected:
    void beginChange(CAudioParam& param, std::int32_t group, std::int32_t element) override;
    void endChange(CAudioParam& param, std::int32_t group, std::int32_t element) override;

private:
    class CSlotNamesListener : public COwnedUpdateListener<CAudioInterfaceBase> {
    public:
        using COwnedUpdateListener::COwnedUpdateListener;
        ~CSlotNamesListener() override { detach(); }
        void onUpdate(const CUpdateInfo& info) override;
    };
    struct CVizListenerRecord {
        std::int32_t kind = 0;
        CString name;
    };

    /// Sends to the client that the message names.
    [[nodiscard]] CErrorPtr answerWith(void (CAudioInterfaceBase::*answer)(std::uint32_t clientId));
    void sendSlotNames(std::uint32_t clientId);
    void sendInternalChannelCount(std::uint32_t clientId);
    void sendGroupCount(std::uint32_t clientId);
    void sendIOChannelCounts(std::uint32_t clientId);
    void sendSampleRate(std::uint32_t clientId);
    void sendEvent(const char* event);

    CAudioVizCollector* m_vizCollector = nullptr; ///< null in a product without visualisation
    CAudioInterfaceDataProvider* m_provider = nullptr;
    CMap<std::int32_t, CVizListenerRecord> m_vizListeners; ///< guarded by messageLock()
    std::int32_t m_rateChangeCount = 0;                    ///< guarded by lock()
    CSlotNamesListener m_slotNamesListener{*this};
};

} // namespace qrb
