// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Tools/Render/CFilePlayer.h"
#include "Tools/Vst3Host/CModuleFile.h"
#include "Tools/Vst3Host/CVstHost.h"

#include <optional>
#include <string>
#include <vector>

namespace render {

/// Plays files through an instance of a built plug-in module, by nothing but the interfaces that every host has.
class CModuleHost : public CFilePlayer {
public:
    CModuleHost(const CHostOptions& options, const std::string& modulePath) : CFilePlayer(options), m_path(modulePath)
    {
    }

    [[nodiscard]] bool open(std::string& error) override;
    [[nodiscard]] bool prepare(bool isOffline, std::string& error) override;
    void runOwner() override;
    [[nodiscard]] int latency() override;
    [[nodiscard]] std::vector<CParamText> listParams() override;
    [[nodiscard]] std::vector<CPresetText> listPresets() override;
    [[nodiscard]] bool saveState(std::string& bytes, std::string& error) override;
    /// Always false: hosts know states only.
    [[nodiscard]] bool savePreset(std::string& bytes, std::string& error) override;
    [[nodiscard]] std::string failure() const override { return m_host->failure(); }

private:
    void queueEvent(int offset, int index, double value) override;
    void processBlock(int frames) override;
    [[nodiscard]] bool applySettings(std::string& error);
    [[nodiscard]] bool selectProgram(const std::string& name, std::string& error);
    [[nodiscard]] bool collectEvents(std::string& error);
    /// Reads a text for a parameter: normalised.
    [[nodiscard]] std::optional<double> readValue(const Steinberg::Vst::ParameterInfo& info, const std::string& text);
    /// Looks a setting's parameter up and reads its text. False with one line in `error`.
    [[nodiscard]] bool resolve(const CSetting& setting, vst3::CPoint& out, std::string& error);

    std::string m_path;
    vst3::CRunLoop m_runLoop;
    std::optional<vst3::CModuleFile> m_module;
    std::optional<vst3::CVstHost> m_host;
    std::vector<vst3::CPoint> m_points;
};

} // namespace render
