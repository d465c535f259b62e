// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioProcessConnection.h"

namespace qrb {

/// Where a line of a source ends up when it is followed through the nodes that only pass it on.
struct CAudioLineRoute {
    int index = 0; ///< of the line within its source
    CAudioProcessConnection::CLine* line = nullptr;
    CAudioLineSink* sink = nullptr;
};

} // namespace qrb
