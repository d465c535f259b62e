// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Presets/CAudioPreset.h"
#include "Tools/Render/CHostOptions.h"

#include <string>
#include <vector>

namespace qrb {
class CAudioWrapper;
}

namespace render {

/// The presets of a command line: one of the built-in bank or of a bank's file, those of files of their own, and the
/// one that the settings are saved as.
class CRenderPresets {
public:
    explicit CRenderPresets(const CHostOptions& options) : m_options(options) {}

    /// Reads all files, before anything else is done. False with one line in `error`.
    [[nodiscard]] bool readFiles(std::string& error);
    /// Activates what was asked for, the bank's preset first. The instance has run, so that all parameters are there.
    [[nodiscard]] bool activate(qrb::CAudioWrapper& instance, std::string& error);
    /// Whether a file has told where channels go, rather than the tool.
    [[nodiscard]] bool tellsRouting() const { return m_tellsRouting; }

    /// Prints the names in the bank's file or in the instance.
    void print(qrb::CAudioWrapper& instance, bool isJson) const;
    /// Takes the current settings to be saved. False with one line in `error`.
    [[nodiscard]] bool take(qrb::CAudioWrapper& instance, std::string& error);
    /// Writes what was taken as a preset. False with one line in `error`; the file then is as before.
    [[nodiscard]] bool save(const std::string& path, std::string& error) const;

private:
    /// Presets by their whole names, as `path` has them.
    [[nodiscard]] static bool readFile(const std::string& path, std::vector<qrb::CAudioPreset>& out,
                                       std::string& error);
    [[nodiscard]] bool activateBuiltIn(qrb::CAudioWrapper& instance, std::string& error);
    [[nodiscard]] bool activateOfBank(qrb::CAudioWrapper& instance, std::string& error);
    [[nodiscard]] bool activateOne(qrb::CAudioWrapper& instance, const qrb::CAudioPreset& preset,
                                   const std::string& from, std::string& error);

    const CHostOptions& m_options;
    std::vector<qrb::CAudioPreset> m_bank;
    std::vector<qrb::CAudioPreset> m_files; ///< in the order of the command line
    qrb::CByteArray m_taken;
    bool m_tellsRouting = false;
};

} // namespace render
