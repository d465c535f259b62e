// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Folders.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace qrb {

/// The system's folders for a test: below a fresh folder that goes with this object.
class CTempFolders : public platform::IFolders {
public:
    CTempFolders();
    ~CTempFolders() override;
    CTempFolders(const CTempFolders&) = delete;
    CTempFolders& operator=(const CTempFolders&) = delete;

    [[nodiscard]] const std::filesystem::path& root() const { return m_root; }
    [[nodiscard]] std::filesystem::path user() const { return m_root / "user"; }
    [[nodiscard]] std::filesystem::path machine() const { return m_root / "machine"; }
    [[nodiscard]] std::filesystem::path module() const { return m_root / "module"; }

    /// Off: the system has no folder for the user.
    bool hasUser = true;

    [[nodiscard]] std::string userDataFolder() override { return hasUser ? user().string() : std::string(); }
    [[nodiscard]] std::string machineDataFolder() override { return machine().string(); }
    [[nodiscard]] std::string modulePath() override { return module().string(); }

    /// Writes a file, with the folders above it.
    static void write(const std::filesystem::path& file, const std::vector<std::uint8_t>& bytes);
    [[nodiscard]] static std::vector<std::uint8_t> read(const std::filesystem::path& file);

private:
    std::filesystem::path m_root;
};

} // namespace qrb
