// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioWrapper.h"
#include "Tools/Render/CFilePlayer.h"

#include <atomic>
#include <optional>
#include <string>
#include <vector>

namespace qrb {
class CAudioExtParam;
class CAudioParam;
} // namespace qrb

namespace render {

/// A plug-in instance whose settings and events name parameters by path, or by the name that hosts show.
class CRenderInstance : public qrb::CAudioWrapper {
public:
    /// What an event sets that does not go to a host parameter.
    struct CTarget {
        qrb::CAudioParam* param = nullptr;
        int group = 0;
        int element = 0;
        double value = 0.0; ///< stored form
    };

    bool onExtParamEvent(const qrb::CExternalEvent& event) override;
    /// Does what blocks have left for the owner's thread, the program that an event has asked for first.
    void runOwner();

    /// Looks a setting's parameter up and reads its text. False with one line in `error`.
    [[nodiscard]] bool resolve(const CSetting& setting, CTarget& out, std::string& error);
    /// Sets a value now, before the instance starts. False with one line in `error`.
    [[nodiscard]] bool apply(const CSetting& setting, std::string& error);
    /// Makes a target known and gives the index by which events name it. Only before the instance starts.
    [[nodiscard]] int addTarget(const CTarget& target);
    /// Both of the above: what an event is to carry. Host parameters go by their own indices and normalised values.
    [[nodiscard]] bool resolveEvent(const CSetting& setting, int& index, double& value, std::string& error);

    /// Reports the layout that hosts use for such counts of channels, so that the routing follows.
    void reportChannels(int channelCount, int keyCount);

    /// All parameters in the order of their paths.
    [[nodiscard]] std::vector<CFilePlayer::CParamText> listParams();

private:
    qrb::CAudioParam* findParam(const CSetting& setting, std::string& error);
    /// The index by which hosts name the parameter that selects programs.
    [[nodiscard]] int programIndex() const { return static_cast<int>(extParams().size()); }
    [[nodiscard]] std::vector<std::string> programNames();
    [[nodiscard]] bool selectProgram(double normal, std::string& error);
    /// Reads a setting that names what hosts see: `index` and normalised value, none if the text is no value. Gives false
    /// if it names something else.
    [[nodiscard]] bool readHostSetting(const CSetting& setting, int& index, std::optional<double>& normal);
    [[nodiscard]] static std::optional<double> readNormal(const qrb::CAudioExtParam& param, const std::string& text);

    std::vector<CTarget> m_targets;
    std::atomic<double> m_programWish{-1.0}; ///< normalised, from the audio thread; negative for none
};

} // namespace render
