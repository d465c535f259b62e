// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/CModInterpolator.h"

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
    int index = 0;
    for (int port = 0; port < portCount(); ++port) {
        for (CAudioLine& line : lines(port)) {
            if (line.buffer) {
                line.buffer.setForm(ESampleForm::stuffed);
                output().send(index, line.buffer, 2 * blockLength());
                line.buffer.clear();
            }
            ++index;
        }
    }
}

} // namespace qrb
