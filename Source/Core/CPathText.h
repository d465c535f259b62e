// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CString.h"

#include <string>
#include <string_view>

namespace qrb {

/// Paths of the system are bytes, most often UTF-8. As text, a byte that is no UTF-8 becomes a lone surrogate (0xDC00 +
/// byte), so that pathToBytes(pathFromBytes(x)) gives the same bytes for every x.
[[nodiscard]] CString pathFromBytes(std::string_view bytes);
[[nodiscard]] std::string pathToBytes(const CString& path);

} // namespace qrb
