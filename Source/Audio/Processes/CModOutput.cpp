// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/CModOutput.h"

#include "Audio/CAudioEnv.h"
#include "Audio/HostSamples.h"

#include <algorithm>

namespace qrb {

void CModOutput::update()
{
    CAudioProcessBase::update();
    if (isConfigurationChanged() && context().env != nullptr)
        context().env->setLatency(inputLatency());
}

void CModOutput::copyTo(void* const* outputs, int position, int count)
{
    const std::span<CAudioLine> inputs = lines();
    const int available = std::min(count, blockLength());
    for (int channel = 0; channel < m_format.channelCount; ++channel) {
        const auto found = std::find_if(inputs.begin(), inputs.end(), [channel](const CAudioLine& line) {
            return line.channel == channel && line.buffer;
        });
        const int copied = found != inputs.end() ? available : 0;
        if (copied > 0)
            writeHostSamples(m_format, outputs, channel, position, copied, found->buffer.data());
        if (copied < count)
            writeHostSamples(m_format, outputs, channel, position + copied, count - copied, nullptr);
    }
}

} // namespace qrb
