// SPDX-License-Identifier: GPL-3.0-or-later
// Messages of a client to the engine. The input is a row of messages; a choice behind those of the names sends the bytes as
// they are. Where the first one is the last choice of all, the client works on its answers before each message.
#include "Fuzz/CFuzzInterface.h"
#include "Fuzz/CFuzzProduct.h"

using namespace fuzz;

namespace {

constexpr std::uint8_t kPull = 255;
constexpr std::size_t kMaxMessages = 200;

/// Nobody says who sends a message, so that a client can speak for another one.
bool speaksForWatcher(std::span<const std::uint8_t> message)
{
    for (std::size_t i = 0; i + 4 <= message.size(); ++i)
        if (message[i + 2] == 2 && message[i + 3] == 0)
            return true;
    return false;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    CFuzzInterface world;
    CFuzzInput input(data, size);
    bool isWatching = true;
    for (std::size_t i = 0; i < kMaxMessages && !input.empty(); ++i) {
        if (*data == kPull)
            world.clients.front().pull();
        qrb::CByteArray message = takeMessage(input, clientEvents);
        isWatching = isWatching && !speaksForWatcher(message.span());
        const std::string before = world.state();
        if (world.clients.front().connector().send(std::move(message)))
            requireSame(world.state(), before, "a message that fails changes nothing");
        requireValidValues(*world.params, EBounds::any);
        require(world.connector->exchange()->waitingBytes(1) <= qrb::CParamInterfaceQueue::kMaxBytes,
                "what waits has its bounds");
    }
    world.params->flushQueue();
    world.params->runDeferred();
    requireValidValues(*world.params, EBounds::any);
    for (CFuzzClient& client : world.clients)
        client.pull();
    if (isWatching)
        world.clients.back().requireMirrors(*world.params);
    return 0;
}
