// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Tools/Render/CFilePlayer.h"
#include "Tools/Render/CRenderInstance.h"
#include "Tools/Render/CRenderPresets.h"

#include <string>
#include <vector>

namespace render {

/// Plays files through an instance of the engine that is linked in, within the entered module.
class CFileHost : public CFilePlayer {
public:
    explicit CFileHost(const CHostOptions& options) : CFilePlayer(options), m_presets(options) {}

    [[nodiscard]] bool open(std::string& error) override;
    [[nodiscard]] bool prepare(bool isOffline, std::string& error) override;
    void runOwner() override;
    [[nodiscard]] int latency() override { return m_instance.getLatencySamples(); }
    [[nodiscard]] std::vector<CParamText> listParams() override { return m_instance.listParams(); }
    [[nodiscard]] std::vector<CPresetText> listPresets() override { return m_presets.list(m_instance); }
    [[nodiscard]] bool saveState(std::string& bytes, std::string& error) override;
    [[nodiscard]] bool savePreset(std::string& bytes, std::string& error) override;

    [[nodiscard]] CRenderInstance& instance() { return m_instance; }

private:
    void queueEvent(int offset, int index, double value) override;
    void processBlock(int frames) override;
    [[nodiscard]] bool applySettings(std::string& error);
    [[nodiscard]] bool collectEvents(std::string& error);

    CRenderInstance m_instance;
    CRenderPresets m_presets;
};

} // namespace render
