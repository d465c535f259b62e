// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Interface/CParamInterfaceMessage.h"

namespace qrb {

// Writing to memory cannot fail, so nothing is asked of the stream here.

CParamInterfaceMessage::CParamInterfaceMessage(const char* event)
{
    add(CString(event));
}

CParamInterfaceMessage& CParamInterfaceMessage::add(std::int32_t value)
{
    static_cast<void>(m_out.writeInt32(value));
    return *this;
}

CParamInterfaceMessage& CParamInterfaceMessage::add(std::uint32_t value)
{
    static_cast<void>(m_out.writeUInt32(value));
    return *this;
}

CParamInterfaceMessage& CParamInterfaceMessage::add(bool value)
{
    return add(std::int32_t{value});
}

CParamInterfaceMessage& CParamInterfaceMessage::add(double value)
{
    static_cast<void>(m_out.writeDouble(value));
    return *this;
}

CParamInterfaceMessage& CParamInterfaceMessage::add(const CString& value)
{
    static_cast<void>(m_out.writeString(value));
    return *this;
}

CByteArray CParamInterfaceMessage::bytes() const
{
    CByteArray bytes;
    m_out.getContiguous(bytes);
    return bytes;
}

} // namespace qrb
