// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioParamFormat.h"
#include "Core/CArray.h"
#include "Core/CError.h"
#include "Core/CNumberText.h"

#include <span>

namespace qrb {

class CInputStream;
class COutputStream;

/// Stands for values that are read later.
inline constexpr double kAudioParamNoCell = 0.0;

/// The key of an item, as it stands in a cell.
[[nodiscard]] inline std::int32_t audioParamKey(double cell)
{
    return roundToInt(cell);
}

/// Cells as they stand on a stream: numbers as doubles, keys of items as 32-bit integers.
CErrorPtr writeAudioParamCells(COutputStream& out, EAudioParamType type, std::span<const double> cells);
/// Reads `count` cells in place of what `cells` holds. Memory grows only as bytes come.
CErrorPtr readAudioParamCells(CInputStream& in, EAudioParamType type, std::size_t count, CArray<double, 4>& cells);

} // namespace qrb
