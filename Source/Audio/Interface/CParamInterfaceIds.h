// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CCheckedObject.h"
#include "Core/CQrbStdAllocator.h"

#include <cstdint>

namespace qrb {

/// Numbers that a client hands out for one kind of thing: its own number in the upper half, a counter in the lower one,
/// which comes round and leaves out 0 and what is in use.
class CParamInterfaceIds {
public:
    /// Most things of one kind, and most clients.
    static constexpr std::uint32_t kMaxCount = 0xffff;

    /// The next free number; 0 if none is left.
    [[nodiscard]] std::int32_t take(std::uint32_t clientId);
    void give(std::int32_t id) { m_used.erase(id); }
    [[nodiscard]] const CSet<std::int32_t>& used() const { return m_used; }

    /// The client of a number.
    [[nodiscard]] static std::uint32_t clientOf(std::int32_t id) { return static_cast<std::uint32_t>(id) >> 16; }

private:
    std::uint32_t m_last = 0;
    CSet<std::int32_t> m_used;
};

} // namespace qrb
