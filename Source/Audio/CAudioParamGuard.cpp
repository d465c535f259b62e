// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParamGuard.h"

#include "Audio/CAudioParamCollector.h"

namespace qrb {

CAudioParamGuard::CAudioParamGuard(CAudioParamCollector& collector, EAudioParamWait wait)
    : m_collector(collector), m_isAudio(wait == EAudioParamWait::tryOnly), m_isHeld(collector.enterParams(wait))
{
}

CAudioParamGuard::~CAudioParamGuard()
{
    if (m_isHeld)
        m_collector.leaveParams();
}

} // namespace qrb
