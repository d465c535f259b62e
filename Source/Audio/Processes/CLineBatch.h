// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>
#include <span>

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
        if (m_count == m_lines.size())
            flush();
        m_lines[m_count++] = line;
    }

private:
    void flush()
    {
        if (m_count > 0)
            m_run(std::span<const T>(m_lines.data(), m_count));
        m_count = 0;
    }

    F m_run;
    std::array<T, 16> m_lines;
    std::size_t m_count = 0;
};

template <typename T, typename F>
[[nodiscard]] CLineBatchOf<T, F> makeLineBatch(F run)
{
    return CLineBatchOf<T, F>(run);
}

} // namespace qrb
