// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Presets/CAudioPreset.h"
#include "Tools/Render/CFilePlayer.h"

#include <string>
#include <vector>

namespace qrb {
class CAudioWrapper;
}

namespace render {

/// A preset's name as users see it, of its whole name.
[[nodiscard]] std::string visibleName(const qrb::CString& whole);

/// The presets of a command line: one of the built-in bank or of a bank's file, and those of files of their own.
class CRenderPresets {
public:
    explicit CRenderPresets(const CHostOptions& options) : m_options(options) {}

    /// Reads all files, before anything else is done. False with one line in `error`.
    [[nodiscard]] bool readFiles(std::string& error);
    /// Activates what was asked for, the bank's preset first. The instance has run, so that all parameters are there.
    [[nodiscard]] bool activate(qrb::CAudioWrapper& instance, std::string& error);
    /// Those in the bank's file or in the instance.
    [[nodiscard]] std::vector<CFilePlayer::CPresetText> list(qrb::CAudioWrapper& instance) const;
    /// The current settings as a file of one preset. False with one line in `error`.
    [[nodiscard]] static bool take(qrb::CAudioWrapper& instance, std::string& bytes, std::string& error);

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
};

} // namespace render
