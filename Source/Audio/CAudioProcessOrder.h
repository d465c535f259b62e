// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioProcessGraph.h"

namespace qrb {

/// Puts the live nodes into an order in which each runs behind all that it is linked to; where several orders serve,
/// that of declaration. False if the links form a cycle: the nodes on it and behind it are left out then.
[[nodiscard]] bool orderNodes(const CAudioProcessGraph& graph, CArray<CAudioProcessBase*>& sequence);

} // namespace qrb
