// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioLineSource.h"
#include "Audio/CAudioProcessBase.h"
#include "Core/CArray.h"
#include "Core/CCheckedObject.h"

#include <memory>

namespace qrb {

/// Instances of one definition in series, and the lines that feed the first of them.
class CAudioStackChain : public CCheckedObject {
public:
    int channel = -1;             ///< -1: all channels of the group
    CAudioLineSource input;       ///< lines of all input ports, each under its own
    CArray<CAudioLineInfo> lines; ///< what `input` announces
    CArray<CAudioLine*> slots;    ///< where the samples of each line come from
    CArray<std::unique_ptr<CAudioProcessBase>> instances;
};

/// What a stack keeps for one channel group.
class CAudioStackGroup : public CCheckedObject {
public:
    explicit CAudioStackGroup(int number) : group(number) {}

    /// Group numbers count modulo 32, as they do in change masks.
    [[nodiscard]] static int numberOf(int lineGroup)
    {
        return static_cast<int>(static_cast<unsigned>(lineGroup) & 31u);
    }
    /// The chain of a channel, made if there is none.
    [[nodiscard]] CAudioStackChain& chain(int channel);

    int group;
    CArray<std::unique_ptr<CAudioStackChain>> chains; ///< by ascending channel
};

} // namespace qrb
