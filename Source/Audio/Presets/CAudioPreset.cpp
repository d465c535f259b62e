// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Presets/CAudioPreset.h"

#include "Audio/Presets/CAudioPresetBudget.h"
#include "Core/CInputStream.h"
#include "Core/COutputStream.h"

#include <utility>

namespace qrb {

CString CAudioPreset::joinName(const CString& registryId, const CString& visibleName)
{
    CString joined = registryId;
    joined.append(kIdSeparator);
    joined += visibleName;
    return joined;
}

CString CAudioPreset::registryId() const
{
    const std::size_t end = name.find(kIdSeparator);
    return end == CString::npos ? CString() : name.substr(0, end);
}

CString CAudioPreset::visibleName() const
{
    const std::size_t end = name.find(kIdSeparator);
    return end == CString::npos ? name : name.substr(end + 1);
}

CErrorPtr CAudioPreset::save(COutputStream& out) const
{
    QRB_TRY(out.writeString(name));
    QRB_TRY(out.writeInt32(static_cast<std::int32_t>(items.size())));
    for (const auto& [key, bytes] : items) {
        QRB_TRY(out.writeString(key));
        QRB_TRY(out.writeInt32(static_cast<std::int32_t>(bytes.size())));
        QRB_TRY(out.write(bytes.data(), bytes.size()));
    }
    return {};
}

CErrorPtr CAudioPreset::load(CInputStream& in)
{
    CAudioPresetBudget budget;
    return load(in, budget);
}

CErrorPtr CAudioPreset::load(CInputStream& in, CAudioPresetBudget& budget)
{
    CAudioPreset loaded;
    std::int32_t count = 0;
    QRB_TRY(in.readString(loaded.name));
    QRB_TRY(in.readInt32(count));
    if (count < 0)
        return QRB_ERROR("@qrbstr_CAudioPreset_load_Count Invalid item count %1.", count);
    for (std::int32_t i = 0; i < count; ++i) {
        CString key;
        std::int32_t size = 0;
        QRB_TRY(in.readString(key));
        QRB_TRY(in.readInt32(size));
        if (size < 0 || !budget.take())
            return QRB_ERROR("@qrbstr_CAudioPreset_load_Item Invalid item '%1' of %2 bytes.", key, size);
        CByteArray bytes;
        QRB_TRY(in.readBytes(bytes, static_cast<std::uint64_t>(size)));
        loaded.items.insert_or_assign(std::move(key), std::move(bytes));
    }
    *this = std::move(loaded);
    return {};
}

} // namespace qrb
