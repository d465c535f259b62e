// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace qrb {

enum class EExternalEventKind : std::uint8_t {
    parameter, ///< a value for the host parameter of the event's index
    midi
};

/// Something that happens at a sample of the next block.
struct CExternalEvent {
    int offset = 0; ///< samples from the begin of the block; limited to the block when it runs
    EExternalEventKind kind = EExternalEventKind::parameter;
    int index = 0; ///< host parameter; what it stands for is the subclass's matter
    double value = 0.0;
};

} // namespace qrb
