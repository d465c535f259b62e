// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CSampleBuffer.h"
#include "Core/CArray.h"

#include <cstdint>

namespace qrb {

class CAudioProcessConnection;

/// One monophonic signal as a node announces it: told by channel and group, changed only between blocks.
struct CAudioLineInfo {
    int channel = -1;
    int group = 0;
    int port = 0;    ///< output port of the node that sends it
    int latency = 0; ///< samples at this point of the graph, at this line's rate
    double sampleRate = 1.0;
    std::uint64_t origin = 0; ///< tells lines of one channel apart that leave a node through one port

    friend bool operator==(const CAudioLineInfo&, const CAudioLineInfo&) = default;
};

/// One line slot of an input port: what a module reads. The slot stays at its address while the port lives.
struct CAudioLine {
    /// A connection's line that feeds this slot.
    struct CSource {
        CAudioProcessConnection* connection = nullptr;
        int index = 0; ///< of the line within the connection
    };

    CSampleBuffer buffer;  ///< samples of the running block; empty between blocks
    int length = 0;        ///< samples of a block that came straight into `buffer`
    bool isDirect = false; ///< blocks of a plan come straight into `buffer`
    int channel = -1;      ///< -1: the slot is free
    int group = 0;
    int latency = 0; ///< samples; that of the node, since lines that come early are delayed up to it
    CArray<CSource, 2> sources;
};

} // namespace qrb
