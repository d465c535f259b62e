// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioParamDeferredTarget.h"

#include <cstdint>

namespace qrb {

class CAudioWrapper;

/// Takes one end of a user's gesture to the host: in line with the value changes that wait, so that they stay between
/// begin and end.
class CGestureTarget final : public CAudioParamDeferredTarget {
public:
    using Call = void (CAudioWrapper::*)(std::int32_t index);

    CGestureTarget(CAudioWrapper& wrapper, Call call) : m_wrapper(wrapper), m_call(call) {}

    void onDeferred(std::int32_t index, double) override { (m_wrapper.*m_call)(index); }

private:
    CAudioWrapper& m_wrapper;
    Call m_call;
};

} // namespace qrb
