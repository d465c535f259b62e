// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParamCells.h"

#include "Core/CInputStream.h"
#include "Core/COutputStream.h"

namespace qrb {

CErrorPtr writeAudioParamCells(COutputStream& out, EAudioParamType type, std::span<const double> cells)
{
    for (const double cell : cells) {
        if (type == EAudioParamType::number)
            QRB_TRY(out.writeDouble(cell));
        else
            QRB_TRY(out.writeInt32(audioParamKey(cell)));
    }
    return {};
}

CErrorPtr readAudioParamCells(CInputStream& in, EAudioParamType type, std::size_t count, CArray<double, 4>& cells)
{
    cells.clear();
    for (std::size_t i = 0; i < count; ++i) {
        double cell = 0.0;
        if (type == EAudioParamType::number) {
            QRB_TRY(in.readDouble(cell));
        } else {
            std::int32_t key = 0;
            QRB_TRY(in.readInt32(key));
            cell = key;
        }
        cells.append(cell);
    }
    return {};
}

} // namespace qrb
