// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace qrb::platform {

/// Operations on paths, which are the system's bytes. Those that can fail give 0 or the system's error number.
/// Thread: any.

/// True for a file of any kind that is not a folder.
[[nodiscard]] bool fileExists(const std::string& path);
[[nodiscard]] bool directoryExists(const std::string& path);
/// Creates the last folder of the path; the ones above it must exist.
[[nodiscard]] int createDirectory(const std::string& path);
[[nodiscard]] int removeFile(const std::string& path);
/// An existing file of the new name is replaced; the change is seen whole or not at all.
[[nodiscard]] int renameFile(const std::string& from, const std::string& to);

} // namespace qrb::platform
