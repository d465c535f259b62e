// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Viz/CAudioVizDataSpectrum.h"

#include "Audio/Viz/VizArrays.h"
#include "Core/CInputStream.h"
#include "Core/COutputStream.h"

#include <utility>

namespace qrb {

CErrorPtr CAudioVizDataSpectrum::save(COutputStream& out) const
{
    QRB_TRY(CAudioVizData::save(out));
    QRB_TRY(writeVizArray(out, bins.span()));
    QRB_TRY(out.writeDouble(sampleRate));
    QRB_TRY(out.writeInt32(blockSize));
    QRB_TRY(out.writeInt32(spectrumKind));
    return out.writeDouble(average);
}

CErrorPtr CAudioVizDataSpectrum::load(CInputStream& in)
{
    CAudioVizDataSpectrum read;
    QRB_TRY(read.CAudioVizData::load(in));
    QRB_TRY(readVizArray(in, read.bins));
    QRB_TRY(in.readDouble(read.sampleRate));
    QRB_TRY(in.readInt32(read.blockSize));
    QRB_TRY(in.readInt32(read.spectrumKind));
    QRB_TRY(in.readDouble(read.average));
    *this = std::move(read);
    return {};
}

} // namespace qrb
