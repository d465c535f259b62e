// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/Monitor/Client/CMeterBank.h"

#include "Audio/Viz/CAudioVizDataMeter.h"
#include "Audio/Viz/CVizExchange.h"

#include <algorithm>
#include <cmath>

namespace monitor {

double toDecibels(double factor)
{
    constexpr double kSilence = 1e-6;
    return 20.0 * std::log10(std::max(factor, kSilence));
}

CMeterBank::CMeterBank(qrb::CVizExchange& exchange, const std::string& source)
    : m_exchange(exchange),
      m_handle(exchange.addListener(qrb::CString::fromUtf8("plugin.modMain." + source), *this, 0.0))
{
}

CMeterBank::~CMeterBank()
{
    m_exchange.removeListener(m_handle);
}

void CMeterBank::onVizIdle(const qrb::CVizListenerEntry&)
{
    m_levels.clear();
}

void CMeterBank::onVizData(const qrb::CVizListenerEntry&, const qrb::CAudioVizData& data)
{
    if (const auto* const meter = dynamic_cast<const qrb::CAudioVizDataMeter*>(&data))
        m_levels[{data.group, data.channel, data.index}] = {meter->value, meter->peak};
}

} // namespace monitor
