// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace qrb {

/// How many lines or samples a loop takes at once. All widths give the same bits.
enum class EVectorWidth { plain, pairs, quads };

/// Whether the processor has the vectors.
[[nodiscard]] bool hasVectorWidth(EVectorWidth width);
/// The widest that it has.
[[nodiscard]] EVectorWidth widestVectors();

} // namespace qrb
