// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CArray.h"
#include "Core/CError.h"

#include <cstdint>
#include <span>

namespace qrb {

class CInputStream;
class COutputStream;

/// Most items that an array of a record may have.
inline constexpr std::int32_t kMaxVizArrayItems = 1 << 17;

// Arrays of records on a stream: int32 count, then the items. A count that no record has, or that the stream does not
// hold, is an error; the array stays as it was then.

CErrorPtr writeVizArray(COutputStream& out, std::span<const double> items);
CErrorPtr writeVizArray(COutputStream& out, std::span<const std::int32_t> items);
CErrorPtr readVizArray(CInputStream& in, CArray<double, 0>& items);
CErrorPtr readVizArray(CInputStream& in, CArray<std::int32_t, 0>& items);

} // namespace qrb
