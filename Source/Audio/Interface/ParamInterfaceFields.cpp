// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Interface/ParamInterfaceFields.h"

#include "Core/CInputStream.h"

#include <cmath>

namespace qrb {

CErrorPtr readField(CInputStream& in, std::int32_t& value)
{
    return in.readInt32(value);
}

CErrorPtr readField(CInputStream& in, std::uint32_t& value)
{
    return in.readUInt32(value);
}

CErrorPtr readField(CInputStream& in, bool& value)
{
    std::int32_t number = 0;
    QRB_TRY(in.readInt32(number));
    value = number != 0;
    return {};
}

CErrorPtr readField(CInputStream& in, double& value)
{
    double number = 0.0;
    QRB_TRY(in.readDouble(number));
    if (!std::isfinite(number))
        return QRB_ERROR("@qrbstr_ParamInterfaceFields_readField_Number A number of a message is not finite.");
    value = number;
    return {};
}

CErrorPtr readField(CInputStream& in, CString& value)
{
    return in.readString(value);
}

CErrorPtr checkMessageEnd(CInputStream& in)
{
    std::uint8_t byte = 0;
    std::size_t count = 1;
    QRB_TRY(in.readAvailable(&byte, count));
    if (count != 0)
        return QRB_ERROR("@qrbstr_ParamInterfaceFields_checkMessageEnd_Long A message is longer than its fields.");
    return {};
}

} // namespace qrb
