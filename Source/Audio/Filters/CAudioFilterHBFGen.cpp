// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Filters/CAudioFilterHBFGen.h"

#include "Audio/Filters/FilterNumberList.h"

#include <algorithm>

namespace qrb {

CErrorPtr CAudioFilterHBFGen::init()
{
    QRB_TRY(CAudioFilterGen::init());
    if (!parseNumberList(getAttrString("a"), m_direct) || m_direct.empty())
        return QRB_ERROR("@qrbstr_CAudioFilterHBFGen_init_NoCoeffsA Not enough 'a' coefficients defined.");
    if (!parseNumberList(getAttrString("b"), m_delayed) || m_delayed.empty())
        return QRB_ERROR("@qrbstr_CAudioFilterHBFGen_init_NoCoeffsB Not enough 'b' coefficients defined.");
    if (m_direct.size() != m_delayed.size())
        return QRB_ERROR(
            "@qrbstr_CAudioFilterHBFGen_init_CoeffsCountError Coefficient count should match in 'a' and 'b' "
            "coefficient lists.");
    return nullptr;
}

void CAudioFilterHBFGen::design(CAudioFilterStageList& list, double, const CAudioFilterParams&,
                                CDCDAWFilterWorkspace* workspace) const
{
    const std::size_t count = std::min(m_direct.size(), kMaxCount);
    list.append(static_cast<EFilterKind>(count), m_direct.span().first(count), m_delayed.span().first(count),
                workspace);
}

} // namespace qrb
