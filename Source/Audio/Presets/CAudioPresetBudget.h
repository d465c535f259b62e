// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>

namespace qrb {

/// Bounds the memory that outside data of presets can claim by many tiny records: each bank, preset and item counts as
/// one, over all of one list. The bytes themselves are bounded by the chunk that they come from.
struct CAudioPresetBudget {
    static constexpr std::size_t kMaxRecords = std::size_t{1} << 20;

    /// False once too many have been taken.
    [[nodiscard]] bool take() { return left > 0 && left-- > 0; }

    std::size_t left = kMaxRecords;
};

} // namespace qrb
