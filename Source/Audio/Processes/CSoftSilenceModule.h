// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioModule.h"
#include "Audio/Processes/CDenormNoise.h"

namespace qrb {

/// Base of modules that can fall silent, which they do with noise far below anything heard.
class CSoftSilenceModule : public CAudioModule {
public:
    /// Begins a noise of its own.
    void start() override;

protected:
    void passAll(int port);
    void silenceAll();

private:
    CDenormNoise m_noise;
};

} // namespace qrb
