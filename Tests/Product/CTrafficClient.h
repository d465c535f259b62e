// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioParam.h"
#include "Audio/Interface/CAudioInterfaceClient.h"
#include "Audio/Interface/CParamInterfaceClientConnectorUni.h"
#include "Audio/Interface/CParamInterfaceParamListener.h"
#include "Audio/Interface/CParamInterfaceRegistryListener.h"
#include "Audio/Presets/CAudioPreset.h"
#include "Audio/Viz/CAudioInterfaceVizProcessor.h"
#include "Tools/Render/CRenderInstance.h"

#include <deque>
#include <random>
#include <string>
#include <utility>
#include <vector>

/// An editor of an instance, in a tree of its own, that follows every parameter and every registry and asks at random
/// for all that an editor can ask for.
class CTrafficClient : public qrb::CAudioInterfaceVizProcessor {
public:
    CTrafficClient(render::CRenderInstance& instance, unsigned seed);
    ~CTrafficClient() override;

    /// One random request, now and then behind a look at what the engine has told.
    void step();
    void pull();
    /// Ends all gestures.
    void settle();
    /// Pulls, and expects to know what the engine knows. Nobody changes anything meanwhile.
    void expectSame();
    /// Changes of parameters that have come.
    [[nodiscard]] std::size_t changeCount() const;

    /// What visualisation has been told since the last call.
    [[nodiscard]] std::string takeNotes() { return std::exchange(m_notes, {}); }

    qrb::CErrorPtr onStartViz() override { return note("start;"); }
    qrb::CErrorPtr onStopViz() override { return note("stop;"); }
    qrb::CErrorPtr onClearClient() override { return note("clear;"); }
    qrb::CErrorPtr onVizData(qrb::CInputStream& in) override;
    qrb::CErrorPtr onExportSlotNames(qrb::CInputStream&) override { return {}; }

private:
    struct CParam : qrb::CParamInterfaceParamListener {
        qrb::CErrorPtr onParamInfo(qrb::CInputStream& in) override;
        qrb::CErrorPtr onParamValue(const qrb::CAudioParamUpdate& update) override;
        void expectSame(const qrb::CAudioParam& engine, const qrb::CAudioParamGuard& guard) const;

        qrb::CString path;
        std::int32_t id = 0;
        std::size_t changeCount = 0;
        qrb::CAudioParamInfo info;
        qrb::CAudioParamStorage values;
    };
    struct CRegistry : qrb::CParamInterfaceRegistryListener {
        qrb::CErrorPtr onConnected() override { return {}; }
        qrb::CErrorPtr onRegistryUpdate(bool isFactory, const qrb::CString& registryId,
                                        std::span<const qrb::CString> texts, std::int32_t currentIndex) override;
        qrb::CErrorPtr onPresetData(std::int32_t tag, const qrb::CAudioPreset& data) override;
        qrb::CErrorPtr onBankData(std::int32_t, const qrb::CAudioPresetBank&) override { return {}; }

        qrb::CAudioParamRegistry* engine = nullptr;
        std::int32_t id = 0;
        qrb::CArray<qrb::CString> names;
        std::int32_t current = -1;
        qrb::CAudioPreset preset; ///< the last that has come
    };

    [[nodiscard]] int pick(int end) { return static_cast<int>(m_random() % static_cast<unsigned>(end)); }
    qrb::CErrorPtr note(const char* what);
    void listen(CParam& param);
    void change(CParam& param);
    void usePresets(CRegistry& registry);
    void moveInHistory();
    void look();

    render::CRenderInstance& m_instance;
    std::mt19937 m_random;
    qrb::CObject* m_root = nullptr;
    qrb::CParamInterfaceClientConnectorUni* m_connector = nullptr;
    qrb::CAudioInterfaceClient* m_client = nullptr;
    std::deque<CParam> m_params;
    std::deque<CRegistry> m_registries;
    std::vector<std::int32_t> m_gestures;
    std::vector<std::int32_t> m_views;
    std::string m_notes;
};
