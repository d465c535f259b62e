// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Presets/CAudioPresetBank.h"

#include "Audio/Presets/CAudioPresetBudget.h"
#include "Core/CInputStream.h"
#include "Core/COutputStream.h"

#include <utility>

namespace qrb {

CErrorPtr CAudioPresetBank::save(COutputStream& out) const
{
    QRB_TRY(out.writeString(name));
    QRB_TRY(out.writeInt32(count()));
    for (const CAudioPreset& preset : presets)
        QRB_TRY(preset.save(out));
    return {};
}

CErrorPtr CAudioPresetBank::load(CInputStream& in)
{
    CAudioPresetBudget budget;
    return load(in, budget);
}

CErrorPtr CAudioPresetBank::load(CInputStream& in, CAudioPresetBudget& budget)
{
    CAudioPresetBank loaded;
    std::int32_t presetCount = 0;
    QRB_TRY(in.readString(loaded.name));
    QRB_TRY(in.readInt32(presetCount));
    if (presetCount < 0)
        return QRB_ERROR("@qrbstr_CAudioPresetBank_load_Count Invalid preset count %1.", presetCount);
    for (std::int32_t i = 0; i < presetCount; ++i) {
        if (!budget.take())
            return QRB_ERROR("@qrbstr_CAudioPresetBank_load_TooMany Too many presets.");
        QRB_TRY(loaded.presets.emplace().load(in, budget));
    }
    *this = std::move(loaded);
    return {};
}

} // namespace qrb
