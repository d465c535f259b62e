// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace qrb::platform {

/// Where the system keeps data. Paths are the system's bytes, absolute, with no separator at their end; an empty path
/// says that there is no such folder. Thread: any.
class IFolders {
public:
    virtual ~IFolders() = default;

    /// Folder of the user's own data; created if missing, empty if that fails.
    [[nodiscard]] virtual std::string userDataFolder() = 0;
    /// Folder of data for all users of the machine. It is only read, never created.
    [[nodiscard]] virtual std::string machineDataFolder() = 0;
    /// Folder that holds the binary (plug-in module or program) which this code is part of.
    [[nodiscard]] virtual std::string modulePath() = 0;
};

/// The folders of this system: `XDG_CONFIG_HOME` or `~/.config`, the first of `XDG_CONFIG_DIRS` or `/etc/xdg`.
class CSystemFolders : public IFolders {
public:
    [[nodiscard]] std::string userDataFolder() override;
    [[nodiscard]] std::string machineDataFolder() override;
    [[nodiscard]] std::string modulePath() override;
};

} // namespace qrb::platform
