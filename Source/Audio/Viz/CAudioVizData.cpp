// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Viz/CAudioVizData.h"

#include "Audio/Viz/CAudioVizDataInfo.h"
#include "Audio/Viz/CAudioVizDataMeter.h"
#include "Audio/Viz/CAudioVizDataRGB.h"
#include "Audio/Viz/CAudioVizDataSpectrum.h"
#include "Audio/Viz/CAudioVizDataVScope.h"
#include "Core/CInputStream.h"
#include "Core/COutputStream.h"

namespace qrb {

std::unique_ptr<CAudioVizData> CAudioVizData::create(std::int32_t type)
{
    switch (static_cast<EAudioVizType>(type)) {
    case EAudioVizType::meter:
        return std::make_unique<CAudioVizDataMeter>();
    case EAudioVizType::info:
        return std::make_unique<CAudioVizDataInfo>();
    case EAudioVizType::plain:
        return std::make_unique<CAudioVizData>();
    case EAudioVizType::spectrum:
        return std::make_unique<CAudioVizDataSpectrum>();
    case EAudioVizType::vScope:
        return std::make_unique<CAudioVizDataVScope>();
    case EAudioVizType::rgb:
        return std::make_unique<CAudioVizDataRGB>();
    }
    return nullptr;
}

CErrorPtr CAudioVizData::save(COutputStream& out) const
{
    for (const std::int32_t field : {channel, group, index})
        QRB_TRY(out.writeInt32(field));
    QRB_TRY(out.writeDouble(time));
    return out.writeInt32(serial);
}

CErrorPtr CAudioVizData::load(CInputStream& in)
{
    CAudioVizData read;
    for (std::int32_t* field : {&read.channel, &read.group, &read.index})
        QRB_TRY(in.readInt32(*field));
    QRB_TRY(in.readDouble(read.time));
    QRB_TRY(in.readInt32(read.serial));
    channel = read.channel;
    group = read.group;
    index = read.index;
    time = read.time;
    serial = read.serial;
    return {};
}

} // namespace qrb
