// SPDX-License-Identifier: GPL-3.0-or-later
// Messages of the engine to a client. The input is a row of messages, as for the other way.
#include "Fuzz/CFuzzInterface.h"

using namespace fuzz;

namespace {

constexpr std::uint32_t kClient = 1;

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    CFuzzInterface world;
    CFuzzInput input(data, size);
    CFuzzClient& client = world.clients.front();
    const std::string before = world.state();
    client.pull();
    while (!input.empty()) {
        world.connector->send(kClient, takeMessage(input, baseEvents));
        client.pull(); // at once: a later message may replace one that waits
    }
    requireSame(world.state(), before, "what a client is told changes nothing in the engine");
    return 0;
}
