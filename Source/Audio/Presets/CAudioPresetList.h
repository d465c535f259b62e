// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Presets/CAudioPresetBank.h"
#include "Core/CChunkId.h"

#include <span>

namespace qrb {

/// Chunk ids of what presets are kept in.
inline constexpr std::uint32_t kPresetChunk = chunkId("aprs");
inline constexpr std::uint32_t kPresetBankChunk = chunkId("abnk");
inline constexpr std::uint32_t kPresetListChunk = chunkId("alst");

/// Banks as they stand in a block of application data. Lists that only offer choices have one bank without a name.
class CAudioPresetList : public CCheckedObject {
public:
    /// Count, banks.
    CErrorPtr save(COutputStream& out) const;
    /// Reads what save() wrote; a count that is not positive is an empty list. Stays as it was on failure.
    CErrorPtr load(CInputStream& in);
    CErrorPtr load(std::span<const std::uint8_t> bytes);

    CArray<CAudioPresetBank> banks;
};

} // namespace qrb
