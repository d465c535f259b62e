// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace qrb {

/// What the nodes of one instance's graph report while they run, for the plan that stands for them between changes.
/// Thread: audio.
struct CAudioGraphChanges {
    std::uint32_t structure = 0; ///< counts: lines or links somewhere became others
    std::uint32_t requests = 0;  ///< counts: something wants the nodes to be updated
    bool isPlanned = false;      ///< blocks take the routes of the plan
};

} // namespace qrb
