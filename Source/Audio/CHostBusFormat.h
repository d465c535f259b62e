// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace qrb {

/// How a host hands over the samples of one bus. Buffers are an array of one pointer a channel; interleaved, the first
/// pointer alone counts and holds all channels, sample by sample.
struct CHostBusFormat {
    int channelCount = 0;
    bool isDouble = false; ///< 64-bit floats, otherwise 32-bit
    bool isInterleaved = false;

    bool operator==(const CHostBusFormat&) const = default;
};

} // namespace qrb
