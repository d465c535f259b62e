// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Presets/CAudioParamUndoEntry.h"
#include "Core/CQrbStdAllocator.h"

#include <cstdint>
#include <memory>
#include <utility>

namespace qrb {

class CAudioParam;

/// A gesture of a client that is not submitted yet, and what elements it has touched.
class CParamInterfaceUndoRecord : public CCheckedObject {
public:
    /// Element * 256 + group.
    using CPlace = std::pair<CAudioParam*, std::int32_t>;

    std::unique_ptr<CAudioParamUndoEntry> entry; ///< null once it is closed
    CSet<CPlace> places;
};

} // namespace qrb
