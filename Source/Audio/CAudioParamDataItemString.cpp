// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParamDataItemString.h"

#include "Audio/CAudioParamFormat.h"
#include "Core/CInputStream.h"
#include "Core/COutputStream.h"

namespace qrb {

std::unique_ptr<CAudioParamDataItem> CAudioParamDataItemString::clone() const
{
    return std::make_unique<CAudioParamDataItemString>(m_text);
}

CErrorPtr CAudioParamDataItemString::save(COutputStream& out) const
{
    return out.writeString(m_text);
}

CErrorPtr CAudioParamDataItemString::load(CInputStream& in)
{
    return in.readString(m_text);
}

EAudioParamType CAudioParamDataItemString::getType() const
{
    return EAudioParamType::text;
}

} // namespace qrb
