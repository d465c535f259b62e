// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Filters/CDCDAWContextWorkspace.h"
#include "Audio/Filters/FilterStageKinds.h"
#include "Core/CQrbStdAllocator.h"

namespace qrb {

/// The stage kinds in use by one plug-in instance: one record serves all stages of a kind. Thread: audio.
class CDCDAWFilterWorkspace : public CDCDAWContextWorkspace {
public:
    /// Key among the workspaces of an audio context.
    static constexpr int kContextKey = 65535;

    /// The record of a kind, entered on first use; null where the number names none. Stays at its address.
    [[nodiscard]] const CDCDAWFilterKind* kind(EFilterKind id);

private:
    CMap<int, CDCDAWFilterKind> m_kinds;
};

} // namespace qrb
