// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CCheckedObject.h"
#include "Core/CString.h"

#include <cstdint>

namespace qrb {

class CAudioVizData;

/// What a consumer asked for, as it is told back to it.
struct CVizListenerEntry {
    std::int32_t handle = 0;
    CString name;          ///< of the source
    std::int32_t kind = 0; ///< CVizExchange::kOwnInstance, or the number of an export slot
};

/// Consumer of visualisation data, such as a meter's view. Both calls run on the thread of its CVizExchange; a
/// listener may be added or removed from within them.
class CVizListener : public CCheckedObject {
public:
    /// No record has come for the time that the listener asked for, or processing has stopped.
    virtual void onVizIdle(const CVizListenerEntry& entry) = 0;
    virtual void onVizData(const CVizListenerEntry& entry, const CAudioVizData& data) = 0;
};

} // namespace qrb
