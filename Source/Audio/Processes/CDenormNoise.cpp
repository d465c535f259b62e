// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/CDenormNoise.h"

#include <cstddef>

#include "Audio/CSampleBufferPool.h"
#include "Core/CProcessState.h"

namespace qrb {

namespace {

constexpr std::uint32_t kFactor = 30013;
constexpr std::uint32_t kOffset = 30011;
constexpr std::size_t kLanes = 4;

constexpr std::uint32_t advance(std::uint32_t state)
{
    return state * kFactor + kOffset;
}

// State j + 1 steps on, as one step with a factor and an offset of its own: lanes run beside each other.
struct CLaneSteps {
    std::uint32_t factor[kLanes];
    std::uint32_t offset[kLanes];
};

constexpr CLaneSteps makeLaneSteps()
{
    CLaneSteps steps{};
    std::uint32_t factor = 1;
    std::uint32_t offset = 0;
    for (std::size_t lane = 0; lane < kLanes; ++lane) {
        steps.factor[lane] = factor *= kFactor;
        steps.offset[lane] = offset = advance(offset);
    }
    return steps;
}

constexpr CLaneSteps kSteps = makeLaneSteps();

double toNoise(std::uint32_t state)
{
    // Bit 23 scaled to 2e-11; the cast goes by way of a signed number, which the processor converts directly.
    return static_cast<double>(static_cast<std::int32_t>(state & 0x800000u)) * 2.384185791015625e-18 - 1e-11;
}

} // namespace

std::uint32_t CDenormNoise::takeSeed()
{
    return processState().denormSeed.fetch_add(1, std::memory_order_relaxed);
}

template <class Store>
void CDenormNoise::run(std::size_t count, Store store)
{
    std::uint32_t state = m_state;
    std::size_t i = 0;
    for (; i + kLanes <= count; i += kLanes) {
        std::uint32_t lanes[kLanes];
        for (std::size_t lane = 0; lane < kLanes; ++lane) {
            lanes[lane] = state * kSteps.factor[lane] + kSteps.offset[lane];
            store(i + lane, toNoise(lanes[lane]));
        }
        state = lanes[kLanes - 1];
    }
    for (; i < count; ++i) {
        state = advance(state);
        store(i, toNoise(state));
    }
    m_state = state;
}

void CDenormNoise::fill(std::span<double> out)
{
    run(out.size(), [out](std::size_t i, double noise) { out[i] = noise; });
}

CSampleBuffer CDenormNoise::makeBuffer(CSampleBufferPool& pool, int length)
{
    CSampleBuffer buffer = pool.get(length);
    fill({buffer.data(), static_cast<std::size_t>(length)});
    return buffer;
}

void CDenormNoise::add(std::span<const double> in, std::span<double> out)
{
    run(in.size(), [in, out](std::size_t i, double noise) { out[i] = in[i] + noise; });
}

} // namespace qrb
