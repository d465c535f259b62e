// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParamUpdate.h"

#include "Audio/CAudioParamCells.h"
#include "Audio/CAudioParamUpdateHolder.h"
#include "Core/CInputStream.h"
#include "Core/COutputStream.h"

namespace qrb {

bool CAudioParamUpdate::isValid() const
{
    return (isTemplate() || (group >= 0 && group < kAudioParamMaxGroups)) && firstElement >= 0 && elementCount >= 0 &&
           firstElement <= kAudioParamMaxElements && elementCount <= kAudioParamMaxElements - firstElement &&
           format.isValid() && (elementCount == 0 || values != nullptr);
}

CErrorPtr CAudioParamUpdate::save(COutputStream& out) const
{
    for (const std::int32_t field : {group, firstElement, elementCount, std::int32_t{isToEnd}, format.elementSize,
                                     static_cast<std::int32_t>(format.type), std::int32_t{format.isSingleGroup},
                                     std::int32_t{format.isSingleElement}})
        QRB_TRY(out.writeInt32(field));
    QRB_TRY(writeAudioParamCells(out, format.type, cells()));
    if (!format.hasItems())
        return {};
    return data != nullptr ? data->save(out) : CAudioParamData().save(out);
}

CErrorPtr CAudioParamUpdate::load(CInputStream& in, CAudioParamUpdateHolder& holder)
{
    CAudioParamUpdate loaded;
    std::int32_t toEnd = 0;
    std::int32_t type = 0;
    std::int32_t singleGroup = 0;
    std::int32_t singleElement = 0;
    for (std::int32_t* const field : {&loaded.group, &loaded.firstElement, &loaded.elementCount, &toEnd,
                                      &loaded.format.elementSize, &type, &singleGroup, &singleElement})
        QRB_TRY(in.readInt32(*field));
    loaded.isToEnd = toEnd != 0;
    loaded.format.type = static_cast<EAudioParamType>(type);
    loaded.format.isSingleGroup = singleGroup != 0;
    loaded.format.isSingleElement = singleElement != 0;
    loaded.values = &kAudioParamNoCell;
    if (!loaded.isValid())
        return QRB_ERROR(
            "@qrbstr_CAudioParamUpdate_load_Invalid Invalid parameter change (group %1, elements %2 + %3).",
            loaded.group, loaded.firstElement, loaded.elementCount);
    QRB_TRY(readAudioParamCells(in, loaded.format.type, loaded.cellCount(), holder.values));
    if (loaded.format.hasItems())
        QRB_TRY(holder.data.load(in));
    loaded.values = loaded.elementCount != 0 ? holder.values.data() : nullptr;
    loaded.data = &holder.data;
    *this = loaded;
    return {};
}

} // namespace qrb
