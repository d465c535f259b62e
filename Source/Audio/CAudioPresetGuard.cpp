// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioPresetGuard.h"

#include "Audio/CAudioParamCollector.h"

namespace qrb {

CAudioPresetGuard::CAudioPresetGuard(CAudioParamCollector& collector) : m_collector(collector)
{
    m_collector.enterPreset();
}

CAudioPresetGuard::~CAudioPresetGuard()
{
    m_collector.leavePreset();
}

} // namespace qrb
