// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Filters/CAudioFilterSerialGen.h"

#include "Audio/Filters/CAudioFilterSerialGenItem.h"

namespace qrb {

CErrorPtr CAudioFilterSerialGen::initChilds()
{
    QRB_TRY(CAudioFilterGen::initChilds());
    m_items.clear();
    for (const CObject* child : childs()) {
        if (const auto* item = dynamic_cast<const CAudioFilterSerialGenItem*>(child))
            m_items.append(item);
    }
    return nullptr;
}

void CAudioFilterSerialGen::design(CAudioFilterStageList& list, double sampleRate, const CAudioFilterParams& params,
                                   CDCDAWFilterWorkspace* workspace) const
{
    for (const CAudioFilterSerialGenItem* item : m_items)
        item->design(list, sampleRate, params, workspace);
}

} // namespace qrb
