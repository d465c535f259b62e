// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CHostBusFormat.h"

namespace qrb {

/// Turns samples `position` to `position + count` of a host's channel into doubles; silence where the host gives no
/// buffer or the bus has no such channel. Thread: any.
void readHostSamples(const CHostBusFormat& format, const void* const* buffers, int channel, int position, int count,
                     double* samples);

/// The way back; null `samples` write silence. A channel without buffer is skipped. Thread: any.
void writeHostSamples(const CHostBusFormat& format, void* const* buffers, int channel, int position, int count,
                      const double* samples);

} // namespace qrb
