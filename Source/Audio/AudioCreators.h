// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CCreatorTable.h"

#include <span>

namespace qrb {

/// The classes of parameters, converters, graph and modules that documents may name.
[[nodiscard]] std::span<const CCreatorRow> audioCreators();

} // namespace qrb
