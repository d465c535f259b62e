// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioWrapper.h"
#include "Audio/Presets/CAudioParamRegistry.h"
#include "Audio/Presets/CAudioPresetList.h"
#include "Core/CInputStream.h"
#include "Core/CMemoryReaderStatic.h"
#include "Core/CWriteSeqBuffer.h"

namespace qrb {

CErrorPtr CAudioWrapper::saveState(COutputStream& out)
{
    CWriteSeqBuffer buffer;
    QRB_TRY(m_paramRegistry->acquirePreset(false, -1, -1, buffer));
    CByteArray payload;
    buffer.getContiguous(payload);
    return out.writeCompressedData(payload.span(), kPresetChunk);
}

CErrorPtr CAudioWrapper::loadState(CInputStream& in)
{
    CByteArray payload;
    QRB_TRY(in.readCompressedData(payload, kPresetChunk));
    CMemoryReaderStatic preset(payload.span());
    return m_paramRegistry->activatePreset(preset, this, -1);
}

} // namespace qrb
