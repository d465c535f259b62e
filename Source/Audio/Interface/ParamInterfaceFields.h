// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CError.h"
#include "Core/CString.h"

#include <cstdint>

namespace qrb {

class CInputStream;

// Fields of messages as they stand on a stream. What is read comes from outside: a number is finite, or an error.

CErrorPtr readField(CInputStream& in, std::int32_t& value);
CErrorPtr readField(CInputStream& in, std::uint32_t& value);
CErrorPtr readField(CInputStream& in, bool& value);
CErrorPtr readField(CInputStream& in, double& value);
CErrorPtr readField(CInputStream& in, CString& value);
/// A message ends with its last field: what follows tells that it was meant for somebody else.
CErrorPtr checkMessageEnd(CInputStream& in);

/// The next fields of a message, in their order.
template <class... F>
CErrorPtr readFields(CInputStream& in, F&... fields)
{
    CErrorPtr error;
    static_cast<void>((!(error = readField(in, fields)) && ...));
    return error;
}

/// The same for the last fields.
template <class... F>
CErrorPtr readLastFields(CInputStream& in, F&... fields)
{
    CErrorPtr error = readFields(in, fields...);
    return error ? std::move(error) : checkMessageEnd(in);
}

} // namespace qrb
