// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CArray.h"
#include "Core/CCheckedObject.h"

#include <cstdint>

namespace qrb {

class CAudioParam;
class CAudioParamDeferredTarget;

/// What waits for the moment when no parameter is held: calls of targets, and notifications of changes that the audio
/// thread made. Guarded by the parameter lock of the instance. Adding allocates nothing within the room made at the start.
class CAudioParamDeferredCalls : public CCheckedObject {
public:
    /// A call that was asked for.
    struct CCall {
        CAudioParamDeferredTarget* target; ///< null once cancelled
        std::int32_t index;
        double value;
    };
    /// A changed range of elements; several changes of a group by one source become one range.
    struct CChange {
        CAudioParam* param;
        const void* source;
        std::int32_t group;
        std::int32_t firstElement;
        std::int32_t endElement;
    };
    static constexpr std::size_t kRoom = 512;

    CAudioParamDeferredCalls();

    void addCall(CAudioParamDeferredTarget& target, std::int32_t index, double value);
    /// The same, in place of a call of that target and index which waits already.
    void addLatest(CAudioParamDeferredTarget& target, std::int32_t index, double value);
    void addChange(const CChange& change);
    void cancel(const CAudioParamDeferredTarget& target);
    [[nodiscard]] bool empty() const { return m_calls.empty() && m_changes.empty(); }
    /// Exchanges the content with an empty list.
    void swap(CAudioParamDeferredCalls& other);
    void clear();

    [[nodiscard]] const CArray<CCall>& calls() const { return m_calls; }
    [[nodiscard]] const CArray<CChange>& changes() const { return m_changes; }

private:
    CArray<CCall> m_calls;
    CArray<CChange> m_changes;
};

} // namespace qrb
