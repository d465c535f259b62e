// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioParamCollector.h"
#include "Audio/Interface/CAudioInterfaceBase.h"
#include "Audio/Interface/CAudioInterfaceClient.h"
#include "Audio/Interface/CAudioInterfaceDataProvider.h"
#include "Audio/Interface/CParamInterfaceBaseConnectorUni.h"
#include "Audio/Interface/CParamInterfaceClientConnectorUni.h"
#include "Audio/Interface/CParamInterfaceRegistryListener.h"
#include "Audio/Presets/CAudioParamRegistry.h"
#include "Audio/Viz/CAudioVizCollector.h"
#include "Tests/Support/CTempFolders.h"
#include "Tests/Support/CTestModule.h"

#include <atomic>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace qrb {

/// Instance that writes down what it is told.
class CTestProvider : public CAudioInterfaceDataProvider {
public:
    std::int32_t getInternalChannelCount() override { return 8; }
    std::int32_t getGroupCount() override { return 4; }
    std::int32_t getInputChannelCount() override { return inputs; }
    std::int32_t getOutputChannelCount() override { return 6; }
    std::int32_t getSidechainChannelCount() override { return 1; }
    double getSampleRate() override { return 96000.0; }
    void onBeginChange(CAudioParam& param, std::int32_t group, std::int32_t element) override
    {
        note("begin ", param, group, element);
    }
    void onEndChange(CAudioParam& param, std::int32_t group, std::int32_t element) override
    {
        note("end ", param, group, element);
    }
    void importChannelLabels() override { calls += "import;"; }

    std::atomic<std::int32_t> inputs{5};
    std::string calls;

private:
    void note(const char* what, const CAudioParam& param, std::int32_t group, std::int32_t element);
};

/// An editor's copy of a parameter.
class CParamMirror : public CParamInterfaceParamListener {
public:
    CErrorPtr onParamInfo(CInputStream& in) override;
    CErrorPtr onParamValue(const CAudioParamUpdate& update) override;

    /// All groups, values separated by "," and groups by ";"; trailing empty groups left out.
    [[nodiscard]] std::string text() const;

    int infoCount = 0;
    int valueCount = 0;
    CAudioParamInfo info;
    CAudioParamStorage values;
};

/// Writes down what a registry tells.
class CRegistryMirror : public CParamInterfaceRegistryListener {
public:
    CErrorPtr onConnected() override;
    CErrorPtr onRegistryUpdate(bool isFactory, const CString& registryId, std::span<const CString> names,
                               std::int32_t currentIndex) override;
    CErrorPtr onPresetData(std::int32_t tag, const CAudioPreset& preset) override;
    CErrorPtr onBankData(std::int32_t tag, const CAudioPresetBank& bank) override;

    /// What has been told since the last call.
    [[nodiscard]] std::string take() { return std::exchange(m_told, {}); }

    CAudioPreset preset; ///< the last that has come

private:
    std::string m_told;
};

/// A small product: parameters, a master registry with two built-in presets, a panel's registry.
class CInterfaceWorld {
public:
    CInterfaceWorld();
    ~CInterfaceWorld();

    [[nodiscard]] CAudioParam& param(const char* name) { return params.getParam(CString("plugin.modMain.") + name); }
    void bind(const char* name);
    /// The text that a mirror of the parameter has to show.
    [[nodiscard]] std::string text(const char* name);
    /// Texts and numbers of all parameters, and the history: what a refused message leaves as it is.
    [[nodiscard]] std::string state();
    [[nodiscard]] std::string history();
    /// Releases the instance.
    void releaseEngine();

private:
    CTempFolders m_folders;
    CTestModule m_module;

public:
    CObject& root;
    CAudioParamCollector& params;
    CAudioVizCollector& viz;
    CParamInterfaceBaseConnectorUni& connector;
    CAudioInterfaceBase& base;
    CAudioParamRegistry& master;
    CTestProvider provider;
    [[nodiscard]] const std::vector<std::string>& logLines() const { return m_module.logLines(); }
};

/// A client in a tree of its own, of the thread that makes it.
class CClientTree {
public:
    explicit CClientTree(CInterfaceWorld& world);
    ~CClientTree() { release(); }

    /// Sends a message as it is; the lines of the error that comes back.
    std::string send(const std::vector<std::uint8_t>& message);
    /// Works on all messages that wait.
    void pull();
    void release();

private:
    CObject* m_root = nullptr;

public:
    CAudioInterfaceClient* client = nullptr;
    CParamInterfaceClientConnectorUni* connector = nullptr;

    /// A number such as the client would hand out.
    [[nodiscard]] int id(int counter) const { return static_cast<int>((connector->clientId() << 16)) + counter; }
    [[nodiscard]] CObject& root() { return *m_root; }
};

} // namespace qrb
