// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Viz/CAudioVizDataMeter.h"

#include "Core/CInputStream.h"
#include "Core/COutputStream.h"

namespace qrb {

CErrorPtr CAudioVizDataMeter::save(COutputStream& out) const
{
    QRB_TRY(CAudioVizData::save(out));
    QRB_TRY(out.writeDouble(value));
    return out.writeDouble(peak);
}

CErrorPtr CAudioVizDataMeter::load(CInputStream& in)
{
    CAudioVizDataMeter read;
    QRB_TRY(read.CAudioVizData::load(in));
    QRB_TRY(in.readDouble(read.value));
    QRB_TRY(in.readDouble(read.peak));
    *this = read;
    return {};
}

} // namespace qrb
