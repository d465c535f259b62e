// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CString.h"

#include <cstddef>

namespace qrb {

/// Walks the code points of a text: surrogate pairs come as one, a lone surrogate as itself.
class CUtf16Cursor {
public:
    /// `text` must outlive the cursor.
    explicit CUtf16Cursor(const CString& text) : m_text(text) {}

    [[nodiscard]] bool next(char32_t& character)
    {
        if (m_position >= m_text.length())
            return false;
        character = m_text.at(m_position++);
        if (character >= 0xD800 && character < 0xDC00 && m_position < m_text.length()) {
            const char16_t low = m_text.at(m_position);
            if (low >= 0xDC00 && low < 0xE000) {
                ++m_position;
                character = 0x10000 + ((character - 0xD800) << 10) + (low - 0xDC00u);
            }
        }
        return true;
    }

private:
    const CString& m_text;
    std::size_t m_position = 0;
};

} // namespace qrb
