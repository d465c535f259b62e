// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Presets/CAudioPresetList.h"

#include "Audio/Presets/CAudioPresetBudget.h"
#include "Core/CInputStream.h"
#include "Core/CMemoryReaderStatic.h"
#include "Core/COutputStream.h"

#include <utility>

namespace qrb {

CErrorPtr CAudioPresetList::save(COutputStream& out) const
{
    QRB_TRY(out.writeInt32(static_cast<std::int32_t>(banks.size())));
    for (const CAudioPresetBank& bank : banks)
        QRB_TRY(bank.save(out));
    return {};
}

CErrorPtr CAudioPresetList::load(CInputStream& in)
{
    CAudioPresetList loaded;
    CAudioPresetBudget budget;
    std::int32_t count = 0;
    QRB_TRY(in.readInt32(count));
    for (std::int32_t i = 0; i < count; ++i) {
        if (!budget.take())
            return QRB_ERROR("@qrbstr_CAudioPresetList_load_TooMany Too many banks.");
        QRB_TRY(loaded.banks.emplace().load(in, budget));
    }
    *this = std::move(loaded);
    return {};
}

CErrorPtr CAudioPresetList::load(std::span<const std::uint8_t> bytes)
{
    CMemoryReaderStatic in(bytes);
    return load(in);
}

} // namespace qrb
