// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CCreatorTable.h"

#include <span>

namespace qrb {

/// The classes of the object runtime that documents may name.
[[nodiscard]] std::span<const CCreatorRow> coreCreators();

} // namespace qrb
