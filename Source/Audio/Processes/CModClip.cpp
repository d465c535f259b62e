// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/CModClip.h"

#include "Audio/Processes/ClipLine.h"

#include <algorithm>

namespace qrb {

CErrorPtr CModClipDef::init()
{
    QRB_TRY(CAudioProcessDefBase::init());
    m_clipLevel = getAttrDouble("clip-level");
    return nullptr;
}

void CModClipModule::regParams()
{
    m_gainSlot = regParam(0, 1.0);
}

void CModClipModule::start()
{
    constexpr double kLeastLevel = 0.01;
    m_level = std::max(kLeastLevel, static_cast<const CModClipDef&>(node().definition()).clipLevel());
}

void CModClipModule::update()
{
    m_limit = value(m_gainSlot) * m_level;
}

void CModClipModule::process()
{
    const auto length = static_cast<std::size_t>(blockLength());
    for (int i = 0; i < outputCount(); ++i)
        clipLine({input(0, i), length}, m_limit, {writeOutput(i), length});
}

} // namespace qrb
