// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CSampleBuffer.h"

namespace qrb {

class CAudioLineSink;

/// Where a line of a source ends up when it is followed through the nodes that only pass it on.
struct CAudioLineRoute {
    int index = 0; ///< of the line within its source
    /// Where the block goes: into the slot of a node's input, or into a connection's line where that adds or delays.
    CSampleBuffer* buffer = nullptr;
    int* length = nullptr;
    CAudioLineSink* sink = nullptr;
};

} // namespace qrb
