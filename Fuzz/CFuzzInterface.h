// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioParamInfo.h"
#include "Audio/CAudioParamStorage.h"
#include "Audio/Interface/CAudioInterfaceBase.h"
#include "Audio/Interface/CAudioInterfaceClient.h"
#include "Audio/Interface/CAudioInterfaceDataProvider.h"
#include "Audio/Interface/CParamInterfaceBaseConnectorUni.h"
#include "Audio/Interface/CParamInterfaceClientConnectorUni.h"
#include "Audio/Interface/CParamInterfaceExchange.h"
#include "Audio/Interface/CParamInterfaceParamListener.h"
#include "Audio/Interface/CParamInterfaceRegistryListener.h"
#include "Audio/Presets/CAudioParamRegistry.h"
#include "Audio/Viz/CAudioInterfaceVizProcessor.h"
#include "Fuzz/CFuzzInput.h"

#include <deque>
#include <map>
#include <string>

namespace fuzz {

/// An editor's copy of a parameter.
class CMirror : public qrb::CParamInterfaceParamListener {
public:
    qrb::CErrorPtr onParamInfo(qrb::CInputStream& in) override;
    qrb::CErrorPtr onParamValue(const qrb::CAudioParamUpdate& update) override;

    qrb::CAudioParamInfo info;
    qrb::CAudioParamStorage values;
};

/// Whatever else a client can be told: reads it and forgets it.
class CFuzzListener : public qrb::CParamInterfaceRegistryListener, public qrb::CAudioInterfaceVizProcessor {
public:
    qrb::CErrorPtr onConnected() override { return {}; }
    qrb::CErrorPtr onRegistryUpdate(bool, const qrb::CString&, std::span<const qrb::CString>, std::int32_t) override
    {
        return {};
    }
    qrb::CErrorPtr onPresetData(std::int32_t, const qrb::CAudioPreset&) override { return {}; }
    qrb::CErrorPtr onBankData(std::int32_t, const qrb::CAudioPresetBank&) override { return {}; }
    qrb::CErrorPtr onStartViz() override { return {}; }
    qrb::CErrorPtr onStopViz() override { return {}; }
    qrb::CErrorPtr onClearClient() override { return {}; }
    qrb::CErrorPtr onVizData(qrb::CInputStream&) override { return {}; }
    qrb::CErrorPtr onExportSlotNames(qrb::CInputStream&) override { return {}; }
};

/// A client in a tree of its own, which follows some parameters and registries.
class CFuzzClient {
public:
    explicit CFuzzClient(qrb::CObject& engine);
    ~CFuzzClient();
    CFuzzClient(const CFuzzClient&) = delete;
    CFuzzClient& operator=(const CFuzzClient&) = delete;

    /// Works on all messages that wait.
    void pull();
    /// Ends the program if a mirror is not like the parameter.
    void requireMirrors(qrb::CAudioParamCollector& params) const;
    [[nodiscard]] qrb::CParamInterfaceClientConnectorUni& connector() { return *m_connector; }

private:
    qrb::CObject* m_root = nullptr;
    qrb::CParamInterfaceClientConnectorUni* m_connector = nullptr;
    CFuzzListener m_listener;
    std::map<std::string, CMirror> m_mirrors;
};

/// The tree of an instance without its sound: a few of the product's parameters, all registries, the interface. Client 1
/// is for messages from outside, client 2 watches. Each input has its own.
class CFuzzInterface {
public:
    CFuzzInterface();
    ~CFuzzInterface();
    CFuzzInterface(const CFuzzInterface&) = delete;
    CFuzzInterface& operator=(const CFuzzInterface&) = delete;

    [[nodiscard]] std::string state();

private:
    struct CProvider : qrb::CAudioInterfaceDataProvider {
        std::int32_t getInternalChannelCount() override { return 8; }
        std::int32_t getGroupCount() override { return 4; }
        std::int32_t getInputChannelCount() override { return 2; }
        std::int32_t getOutputChannelCount() override { return 2; }
        std::int32_t getSidechainChannelCount() override { return 0; }
        double getSampleRate() override { return 44100.0; }
        void onBeginChange(qrb::CAudioParam&, std::int32_t, std::int32_t) override { ++openGestures; }
        void onEndChange(qrb::CAudioParam&, std::int32_t, std::int32_t) override { --openGestures; }
        void importChannelLabels() override {}

        int openGestures = 0;
    };

    qrb::CObject* m_root = nullptr;
    CProvider m_provider;

public:
    qrb::CAudioParamCollector* params = nullptr;
    qrb::CAudioInterfaceBase* base = nullptr;
    qrb::CParamInterfaceBaseConnectorUni* connector = nullptr;
    qrb::CAudioParamRegistry* master = nullptr;
    std::deque<CFuzzClient> clients;
};

/// Cuts an input into messages: a choice, then a block of bytes. A choice below the count of `events` puts that name in
/// front of the bytes.
[[nodiscard]] qrb::CByteArray takeMessage(CFuzzInput& input, std::span<const char* const> events);

extern const std::span<const char* const> fuzzParams; ///< names of the parameters, in the order of their listeners
[[nodiscard]] qrb::CString pathOf(const char* param);
extern const std::span<const char* const> clientEvents; ///< what clients may send
extern const std::span<const char* const> baseEvents;   ///< what clients are sent

} // namespace fuzz
