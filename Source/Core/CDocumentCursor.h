// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CObjectDocumentData.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace qrb {

/// What a load may still spend beyond what its bytes hold: texts that names and expansions build up or go through.
struct CLoadBudget {
    static constexpr std::size_t kStartChars = 32u * 1024u * 1024u;

    std::size_t chars = kStartChars;

    /// False once more characters have been asked for than a load may make.
    [[nodiscard]] bool spend(std::size_t count)
    {
        if (count > chars)
            return false;
        chars -= count;
        return true;
    }
};

/// A place among the encoded nodes of a document. Nothing outside the bytes is read; a read that fails leaves the
/// cursor where it was.
class CDocumentCursor {
public:
    CDocumentCursor(std::span<const std::uint8_t> bytes, const CObjectDocumentData& document, CLoadBudget& budget)
        : m_bytes(bytes), m_document(document), m_budget(budget)
    {
    }

    [[nodiscard]] const CObjectDocumentData& document() const { return m_document; }
    [[nodiscard]] CLoadBudget& budget() const { return m_budget; }
    [[nodiscard]] std::size_t bytesLeft() const { return m_bytes.size(); }

    [[nodiscard]] bool read(std::uint8_t& value);
    [[nodiscard]] bool read(std::uint16_t& value);
    [[nodiscard]] bool read(std::uint32_t& value);
    /// The next `count` bytes, in place.
    [[nodiscard]] bool readBytes(std::size_t count, std::span<const std::uint8_t>& bytes);
    /// The string of the index that comes next.
    [[nodiscard]] bool readString(const CTextRecord*& text);

private:
    std::span<const std::uint8_t> m_bytes; ///< what is left
    const CObjectDocumentData& m_document;
    CLoadBudget& m_budget;
};

/// Little-endian u16 at `bytes`.
[[nodiscard]] inline std::uint16_t readDocumentU16(const std::uint8_t* bytes)
{
    return static_cast<std::uint16_t>(bytes[0] | (bytes[1] << 8));
}

} // namespace qrb
