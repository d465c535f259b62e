// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/CModInterpolator.h"

#include "Audio/CSampleBufferPool.h"
#include "Audio/Processes/RateMath.h"

namespace qrb {

void CModInterpolator::update()
{
    if (!isConfigurationChanged()) {
        return;
    }
    m_announced.clear();
    for (int port = 0; port < portCount(); ++port) {
        for (const CAudioLine& line : lines(port)) {
            m_announced.append({line.channel, line.group, port, 2 * inputLatency(), 2.0 * sampleRate()});
        }
    }
    output().setLines(m_announced.span());
}

void CModInterpolator::processLines()
{
    const auto length = static_cast<std::size_t>(blockLength());
    int index = 0;
    for (int port = 0; port < portCount(); ++port) {
        for (CAudioLine& line : lines(port)) {
            if (line.buffer) {
                CSampleBuffer buffer = pool().get(2 * blockLength());
                stuffZeros({line.buffer.data(), length}, {buffer.data(), 2 * length});
                line.buffer.clear();
                output().send(index, buffer, 2 * blockLength());
            }
            ++index;
        }
    }
}

} // namespace qrb
