// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/CModAbs.h"

#include "Audio/Processes/LineMath.h"

namespace qrb {

void CModAbsModule::process()
{
    const auto length = static_cast<std::size_t>(blockLength());
    for (int i = 0; i < outputCount(); ++i)
        rectifyLine({input(0, i), length}, {writeOutput(i), length});
}

} // namespace qrb
