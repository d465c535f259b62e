// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Filters/CAudioFilterSerialGenItem.h"

#include "Audio/Filters/FilterNumberList.h"

#include <cmath>

namespace qrb {

CErrorPtr CAudioFilterSerialGenItem::init()
{
    QRB_TRY(CObject::init());
    CAudioFilterGen* designer = nullptr;
    QRB_TRY(findObjectByAttr("fltgen", designer));
    for (const CObject* object = this; object != nullptr; object = object->parent()) {
        if (object == designer) // a design would never end
            return QRB_ERROR("@qrbstr_CAudioFilterSerialGenItem_init_Recursion Filter '%1' contains itself.",
                             designer->fullName());
    }
    m_designer = designer;
    if (!parseNumberList(getAttrString("adjust"), m_scales) || !parseNumberList(getAttrString("adjust-pow"), m_powers))
        return QRB_ERROR("@qrbstr_CAudioFilterSerialGenItem_init_InvalidAdjust Invalid adjustment '%1' '%2' specified.",
                         getAttrString("adjust"), getAttrString("adjust-pow"));
    return nullptr;
}

void CAudioFilterSerialGenItem::design(CAudioFilterStageList& list, double sampleRate, const CAudioFilterParams& params,
                                       CDCDAWFilterWorkspace* workspace) const
{
    if (m_scales.empty() && m_powers.empty()) {
        m_designer->design(list, sampleRate, params, workspace);
        return;
    }
    CAudioFilterParams adjusted(params);
    const std::span<double> values = adjusted.values();
    for (std::size_t i = 0; i < values.size(); ++i) {
        const double power = i < m_powers.size() ? m_powers[i] : 1.0;
        const double scale = i < m_scales.size() ? m_scales[i] : 1.0;
        values[i] = std::pow(values[i], power) * scale;
    }
    m_designer->design(list, sampleRate, adjusted, workspace);
}

} // namespace qrb
