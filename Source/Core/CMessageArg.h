// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CString.h"

#include <concepts>
#include <cstdint>
#include <string_view>

namespace qrb {

/// One argument of a message: text, or a number turned into text.
class CMessageArg {
public:
    CMessageArg(CString text) : m_text(std::move(text)) {}
    CMessageArg(const char* text) : m_text(CString::fromUtf8(text != nullptr ? text : "")) {}
    CMessageArg(const std::string& utf8) : m_text(CString::fromUtf8(utf8)) {}
    CMessageArg(std::string_view utf8) : m_text(CString::fromUtf8(utf8)) {}
    template <std::signed_integral T>
    CMessageArg(T value) : m_text(fromSigned(value))
    {
    }
    template <std::unsigned_integral T>
    CMessageArg(T value) : m_text(fromUnsigned(value))
    {
    }
    CMessageArg(double value);

    [[nodiscard]] const CString& text() const noexcept { return m_text; }

private:
    [[nodiscard]] static CString fromSigned(std::int64_t value);
    [[nodiscard]] static CString fromUnsigned(std::uint64_t value);

    CString m_text;
};

} // namespace qrb
