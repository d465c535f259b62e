// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/CModMult.h"

#include "Audio/Processes/LineMath.h"

namespace qrb {

CErrorPtr CModMultDef::init()
{
    QRB_TRY(CAudioProcessDefBase::init());
    m_isDivision = getAttrBool("is-division");
    return nullptr;
}

void CModMultModule::process()
{
    const bool isDivision = static_cast<const CModMultDef&>(node().definition()).isDivision();
    const auto combine = isDivision ? divideLines : multiplyLines;
    const auto length = static_cast<std::size_t>(blockLength());
    for (int i = 0; i < outputCount(); ++i) {
        const double* const second = input(1, i);
        if (second == nullptr)
            passInput(0, i, i);
        else
            combine({input(0, i), length}, {second, length}, {writeOutput(i), length});
    }
}

} // namespace qrb
