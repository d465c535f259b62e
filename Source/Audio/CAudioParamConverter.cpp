// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParamConverter.h"

namespace qrb {

CErrorPtr CAudioParamConverter::init()
{
    QRB_TRY(CObject::init());
    m_label = getAttrString("label");
    m_isDiscrete = getAttrBool("is-discrete");
    return nullptr;
}

} // namespace qrb
