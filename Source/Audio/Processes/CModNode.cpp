// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/CModNode.h"

namespace qrb {

void CModNode::makeRoutes()
{
    for (int port = 0; port < portCount(); ++port) {
        const std::span<const CAudioLine> inputs = lines(port);
        for (std::size_t i = 0; i < inputs.size(); ++i)
            addRoute({inputs[i].channel, inputs[i].group, static_cast<int>(i), port});
    }
}

} // namespace qrb
