// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CArray.h"
#include "Core/CError.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <span>
#include <string_view>

namespace fuzz {

using CBytes = std::span<const std::uint8_t>;

/// Cuts an input into choices and data. Behind its end there are zeros and nothing.
class CFuzzInput {
public:
    CFuzzInput(const std::uint8_t* data, std::size_t size) : m_rest(data, size) {}

    [[nodiscard]] bool empty() const { return m_rest.empty(); }
    [[nodiscard]] std::uint8_t byte()
    {
        const CBytes taken = bytes(1);
        return taken.empty() ? std::uint8_t{0} : taken[0];
    }
    [[nodiscard]] CBytes bytes(std::size_t count)
    {
        const CBytes taken = m_rest.first(std::min(count, m_rest.size()));
        m_rest = m_rest.subspan(taken.size());
        return taken;
    }
    /// A block that tells its length in 16 bits.
    [[nodiscard]] CBytes block()
    {
        const std::size_t low = byte();
        const std::size_t high = byte();
        return bytes(low + high * 256);
    }
    [[nodiscard]] CBytes rest() { return bytes(m_rest.size()); }

private:
    CBytes m_rest;
};

/// Ends the program where something does not hold, so that the input is kept.
inline void require(bool holds, const char* what)
{
    if (holds)
        return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

/// The same for states that are to be equal; shows where they part.
inline void requireSame(std::string_view now, std::string_view before, const char* what)
{
    constexpr std::size_t kShown = 100;
    const std::size_t at = static_cast<std::size_t>(std::ranges::mismatch(now, before).in1 - now.begin());
    const std::size_t from = at - std::min(at, kShown);
    for (const std::string_view text : {now, before}) {
        for (const char character : text.substr(std::min(from, text.size()), now == before ? 0 : 2 * kShown))
            std::fputc(character >= ' ' && character <= '~' ? character : '.', stderr);
        std::fputs(now == before ? "" : "\n", stderr);
    }
    require(now == before, what);
}

/// The same for what must not fail.
inline void requireSuccess(qrb::CErrorPtr error, const char* what)
{
    if (error)
        std::fprintf(stderr, "%s\n", error->text().toUtf8().c_str());
    require(!error, what);
}

} // namespace fuzz
