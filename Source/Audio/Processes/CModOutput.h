// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CHostBusFormat.h"
#include "Audio/Processes/CModDef.h"

namespace qrb {

/// Last node of an instance: its lines are the outputs of the plug-in, its latency is the plug-in's. The wrapper runs
/// its input step and takes the samples from it.
class CModOutput : public CAudioProcessBase {
public:
    void update() override;

    void setFormat(const CHostBusFormat& format) { m_format = format; }
    [[nodiscard]] const CHostBusFormat& format() const { return m_format; }

    /// Copies the running block into the host's channels, `position` samples behind their begin. A channel without
    /// line gets silence, a line without channel is dropped. Between the input step and the release of the inputs.
    void copyTo(void* const* outputs, int position, int count);

private:
    CHostBusFormat m_format;
};

class CModOutputDef : public CModDef<CModOutput> {};

} // namespace qrb
