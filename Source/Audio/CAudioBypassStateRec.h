// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioBoundParam.h"
#include "Core/CCheckedObject.h"

namespace qrb {

class CAudioProcessBypassStateDef;

/// A bypass state of a process at run time: its parameters and whether it holds.
struct CAudioBypassStateRec : public CCheckedObject {
    const CAudioProcessBypassStateDef* definition = nullptr;
    CAudioBoundParam param;
    CAudioBoundParam andParam;
    bool holds = false;

    [[nodiscard]] bool isOfId(int id) const;
    /// Reads the parameters; true if the state has changed.
    bool evaluate(int group, int element);
};

} // namespace qrb
