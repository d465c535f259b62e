// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace product {

/// One parameter of a preset. Key and bytes stand here exactly as in the file.
struct CItem {
    std::string key;
    std::string bytes;
};

struct CPreset {
    std::string name;
    std::vector<CItem> items; ///< in the order of the file

    /// Puts the items in the order that the system writes them in; equal keys keep theirs.
    void sortItems();
};

struct CBank {
    std::string name;
    std::vector<CPreset> presets;
};

enum class EFileKind { preset, bank, list };

/// A file of presets, byte for byte, so that even what the system would read and write differently survives.
struct CPresetFile {
    EFileKind kind = EFileKind::preset;
    std::vector<CBank> banks; ///< a preset stands in a bank of its own, a bank in a list of its own
    /// The count of an empty list as it stands in the file; no count above 0 is needed.
    std::int32_t emptyCount = 0;
};

/// Largest file that is read. Payloads have a limit of their own, which needs less than this even if nothing packs.
inline constexpr std::size_t kMaxFileBytes = std::size_t{80} << 20;

/// Reads the bytes of a file. False with what is wrong with them in `error`.
[[nodiscard]] bool readPresetFile(std::string_view bytes, CPresetFile& out, std::string& error);
/// The other way round. False if a text or the whole is too long for a file.
[[nodiscard]] bool writePresetFile(const CPresetFile& file, std::string& out, std::string& error);

} // namespace product
