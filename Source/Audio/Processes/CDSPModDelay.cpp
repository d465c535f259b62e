// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/CDSPModDelay.h"

#include <algorithm>

namespace qrb {

void CDSPModDelay::setDelay(int samples)
{
    m_pending = std::max(samples, 0);
    keepLength(m_pending + m_secondOffset);
    if (!m_hasDelay) {
        m_hasDelay = true;
        m_current = m_target = m_pending;
    } else if (!m_isFading && m_pending != m_target) {
        startFade(m_pending);
    }
}

void CDSPModDelay::startFade(int target)
{
    m_target = target;
    m_fadeLeft = m_fadeLength;
    m_fade.start(m_fadeLength);
    m_isFading = true;
}

void CDSPModDelay::advanceFade(int count)
{
    m_fadeLeft -= count;
    if (m_fadeLeft > 0)
        return;
    m_isFading = false;
    m_current = m_target;
    if (m_pending != m_target)
        startFade(m_pending);
}

void CDSPModDelay::process(const double* in, double* out, double* secondOut, int count)
{
    keepLength(m_secondOffset);
    while (count > 0) {
        int part = std::min(count, kChunkLength);
        double fade[kChunkLength];
        if (m_isFading) {
            part = std::min(part, m_fadeLeft);
            for (int i = 0; i < part; ++i)
                fade[i] = m_fade.next();
        }
        writeChunk(in, part);
        readTap(out, part, 0, fade);
        if (secondOut != nullptr) {
            readTap(secondOut, part, m_secondOffset, fade);
            secondOut += part;
        }
        if (m_isFading)
            advanceFade(part);
        in += part;
        out += part;
        count -= part;
    }
}

void CDSPModDelay::readTap(double* out, int count, int offset, const double* fade) const
{
    readChunk(out, count, m_current + offset);
    if (!m_isFading)
        return;
    double incoming[kChunkLength];
    readChunk(incoming, count, m_target + offset);
    for (int i = 0; i < count; ++i)
        out[i] = (0.5 + fade[i]) * out[i] + (0.5 - fade[i]) * incoming[i];
}

CSampleBuffer CDSPModDelay::process(const CSampleBuffer& in, int count)
{
    if (!isNeutral()) {
        CSampleBuffer out = pool().get(count);
        process(in.data(), out.data(), count);
        return out;
    }
    // A later transition to a delay reads from before its start.
    keepLength(0);
    for (int done = 0; done < count; done += kChunkLength)
        writeChunk(in.data() + done, std::min(count - done, kChunkLength));
    return in;
}

void CDSPModDelay::reset()
{
    clearRing();
    m_current = m_target = m_pending = 0;
    m_hasDelay = false;
    m_isFading = false;
}

} // namespace qrb
