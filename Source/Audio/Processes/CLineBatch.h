// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <new>
#include <span>
#include <type_traits>

namespace qrb {

/// Gathers lines for a loop that runs several side by side, without memory from an allocator: it runs when the room is
/// used up, and in the end. `T` tells a line, `F` takes a span of them.
template <typename T, typename F>
class CLineBatchOf {
public:
    explicit CLineBatchOf(F run) : m_run(run) {}
    CLineBatchOf(const CLineBatchOf&) = delete;
    CLineBatchOf& operator=(const CLineBatchOf&) = delete;
    ~CLineBatchOf() { flush(); }

    void add(const T& line)
    {
        if (m_count == kRoom)
            flush();
        ::new (static_cast<void*>(m_room + m_count++ * sizeof(T))) T(line);
    }

private:
    static constexpr std::size_t kRoom = 16;
    static_assert(std::is_trivially_copyable_v<T>);

    void flush()
    {
        if (m_count > 0)
            m_run(std::span<const T>(std::launder(reinterpret_cast<const T*>(m_room)), m_count));
        m_count = 0;
    }

    F m_run;
    alignas(T) std::byte m_room[kRoom * sizeof(T)]; ///< bytes, since nobody needs them cleared in each block
    std::size_t m_count = 0;
};

template <typename T, typename F>
[[nodiscard]] CLineBatchOf<T, F> makeLineBatch(F run)
{
    return CLineBatchOf<T, F>(run);
}

} // namespace qrb
