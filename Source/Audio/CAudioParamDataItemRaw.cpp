// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParamDataItemRaw.h"

#include "Audio/CAudioParamFormat.h"
#include "Core/CInputStream.h"
#include "Core/COutputStream.h"

namespace qrb {

std::unique_ptr<CAudioParamDataItem> CAudioParamDataItemRaw::clone() const
{
    return std::make_unique<CAudioParamDataItemRaw>(m_bytes.span());
}

CErrorPtr CAudioParamDataItemRaw::save(COutputStream& out) const
{
    QRB_TRY(out.writeInt32(static_cast<std::int32_t>(m_bytes.size())));
    return out.write(m_bytes.data(), m_bytes.size());
}

CErrorPtr CAudioParamDataItemRaw::load(CInputStream& in)
{
    std::int32_t count = 0;
    QRB_TRY(in.readInt32(count));
    if (count < 0)
        return QRB_ERROR("@qrbstr_CAudioParamDataItemRaw_load_Count Invalid data length %1.", count);
    CByteArray bytes;
    QRB_TRY(in.readBytes(bytes, static_cast<std::uint64_t>(count)));
    m_bytes = std::move(bytes);
    return {};
}

EAudioParamType CAudioParamDataItemRaw::getType() const
{
    return EAudioParamType::raw;
}

} // namespace qrb
