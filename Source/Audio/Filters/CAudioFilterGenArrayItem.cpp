// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Filters/CAudioFilterGenArrayItem.h"

#include "Audio/Filters/CAudioFilterGenArray.h"

namespace qrb {

CErrorPtr CAudioFilterGenArrayItem::init()
{
    QRB_TRY(CObject::init());
    auto* array = dynamic_cast<CAudioFilterGenArray*>(parent());
    if (array == nullptr)
        return QRB_ERROR(
            "@qrbstr_CAudioFilterGenArrayItem_init_InvalidParent CAudioFilterGenArray class parent expected.");
    CAudioFilterGen* designer = nullptr;
    QRB_TRY(findObjectByAttr("fltgen", designer));
    const int index = getAttrInt("index");
    if (index < 0 || index >= CAudioFilterGenArray::kMaxCount)
        return QRB_ERROR("@qrbstr_CAudioFilterGenArrayItem_init_InvalidIndex Invalid filter index '%1' specified.",
                         getAttrString("index"));
    array->set(index, *designer);
    return nullptr;
}

} // namespace qrb
