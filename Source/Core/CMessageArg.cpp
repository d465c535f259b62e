// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CMessageArg.h"

#include "Core/CNumberText.h"

#include <charconv>

namespace qrb {

CMessageArg::CMessageArg(double value) : m_text(formatPattern("%g", value)) {}

CString CMessageArg::fromSigned(std::int64_t value)
{
    return formatInteger(value);
}

CString CMessageArg::fromUnsigned(std::uint64_t value)
{
    char digits[24];
    const auto end = std::to_chars(digits, digits + sizeof(digits), value).ptr;
    return CString(std::string_view(digits, static_cast<std::size_t>(end - digits)));
}

} // namespace qrb
