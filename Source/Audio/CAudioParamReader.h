// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace qrb {

class CAudioParam;
struct CAudioParamUpdate;

/// What one node asked to be told about a parameter. Made by CAudioParam::attachReader, owned by the collector's pool.
/// Thread: audio, or any while no audio runs.
class CAudioParamReader {
public:
    /// Whether a record concerns this reader; sets its dirty flag and joins the group into its mask if so. The node
    /// clears both after it has read them.
    void tell(const CAudioParamUpdate& update);

private:
    friend class CAudioParam;
    friend class CAudioParamReaderPool;

    [[nodiscard]] bool isHit(const CAudioParamUpdate& update) const;

    std::uint8_t* m_dirtyFlag = nullptr;
    std::uint32_t* m_mask = nullptr; ///< bit g: group g (modulo 32) changed
    std::int32_t m_group = -1;       ///< -1: all groups
    std::int32_t m_element = -1;     ///< -1: all elements
    CAudioParamReader* m_next = nullptr;
    CAudioParamReader* m_previous = nullptr;
};

/// Bit of a group in a change mask.
[[nodiscard]] constexpr std::uint32_t audioParamGroupBit(std::int32_t group)
{
    return std::uint32_t{1} << (static_cast<std::uint32_t>(group) & 31u);
}

} // namespace qrb
