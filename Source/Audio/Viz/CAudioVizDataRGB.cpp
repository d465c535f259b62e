// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Viz/CAudioVizDataRGB.h"

#include "Core/CInputStream.h"
#include "Core/COutputStream.h"

namespace qrb {

CErrorPtr CAudioVizDataRGB::save(COutputStream& out) const
{
    QRB_TRY(CAudioVizData::save(out));
    for (const double component : components)
        QRB_TRY(out.writeDouble(component));
    return {};
}

CErrorPtr CAudioVizDataRGB::load(CInputStream& in)
{
    CAudioVizDataRGB read;
    QRB_TRY(read.CAudioVizData::load(in));
    for (double& component : read.components)
        QRB_TRY(in.readDouble(component));
    *this = read;
    return {};
}

} // namespace qrb
