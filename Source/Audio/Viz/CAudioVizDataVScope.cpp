// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Viz/CAudioVizDataVScope.h"

#include "Audio/Viz/VizArrays.h"

#include <utility>

namespace qrb {

CErrorPtr CAudioVizDataVScope::save(COutputStream& out) const
{
    QRB_TRY(CAudioVizData::save(out));
    QRB_TRY(writeVizArray(out, samples.span()));
    return writeVizArray(out, marks.span());
}

CErrorPtr CAudioVizDataVScope::load(CInputStream& in)
{
    CAudioVizDataVScope read;
    QRB_TRY(read.CAudioVizData::load(in));
    QRB_TRY(readVizArray(in, read.samples));
    QRB_TRY(readVizArray(in, read.marks));
    *this = std::move(read);
    return {};
}

} // namespace qrb
