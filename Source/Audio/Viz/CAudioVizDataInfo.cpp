// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Viz/CAudioVizDataInfo.h"

#include "Core/CInputStream.h"
#include "Core/COutputStream.h"

namespace qrb {

CErrorPtr CAudioVizDataInfo::save(COutputStream& out) const
{
    QRB_TRY(CAudioVizData::save(out));
    QRB_TRY(out.writeString(text));
    return out.writeInt32(code);
}

CErrorPtr CAudioVizDataInfo::load(CInputStream& in)
{
    CAudioVizDataInfo read;
    QRB_TRY(read.CAudioVizData::load(in));
    QRB_TRY(in.readString(read.text));
    QRB_TRY(in.readInt32(read.code));
    *this = std::move(read);
    return {};
}

} // namespace qrb
