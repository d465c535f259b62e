// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Tools/Render/CProductModule.h"
#include "Tools/Render/CRenderInstance.h"

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

/// One vector of samples a channel.
using CChannels = std::vector<std::vector<double>>;

/// Latency in samples that the product promises for a sample rate in Hz.
[[nodiscard]] int promisedLatency(double sampleRate);

/// Seeded noise within -0.5 to 0.5, different in each channel.
[[nodiscard]] CChannels makeNoise(std::size_t channelCount, std::size_t frames, std::uint32_t seed = 1);

/// A constant 1.0 in each channel: whatever gain the chain has can be read off directly.
[[nodiscard]] CChannels makeOnes(std::size_t channelCount, std::size_t frames);

/// The largest difference between `out` from `delay` on and `in`.
[[nodiscard]] double largestDifference(const std::vector<double>& out, const std::vector<double>& in,
                                       std::size_t delay);

/// The largest difference between neighbouring samples.
[[nodiscard]] double largestStep(const std::vector<double>& samples);

/// An instance of the product in a host that asks for whatever a test wants. The module stays entered as long.
class CProductRig {
public:
    struct CShape {
        double sampleRate = 44100.0;
        int inputs = 2;
        int outputs = 2;
        int sidechains = 0;
        int bands = 1; ///< one band gives the input back; several turn its phase
    };

    explicit CProductRig(const CShape& shape);
    ~CProductRig();

    /// `PATH[:GROUP[:ELEMENT]]=TEXT`, in force before the first sample. Before run().
    CProductRig& set(const std::string& setting);
    /// The same as an event at a sample. Before run().
    CProductRig& at(std::uint64_t frame, const std::string& setting);
    /// One of the host's parameters, by its place in their list, from 0 to 1. Before run().
    CProductRig& move(std::uint64_t frame, int hostParam, double normal);

    /// Starts the instance if it is not running and plays `in` (main channels first, then key channels), cut into blocks
    /// of `blockSize`. Gives as many frames as went in, latency and all.
    [[nodiscard]] CChannels run(const CChannels& in, std::size_t blockSize);

    void start();
    /// In force from the next block on, once started.
    void change(const std::string& setting);
    /// Stops and starts again: settings in force at once, nothing left of what was played.
    void restart();
    [[nodiscard]] int latency() { return m_instance->getLatencySamples(); }
    [[nodiscard]] render::CRenderInstance& instance() { return *m_instance; }

private:
    struct CTimed {
        std::uint64_t frame;
        int index;
        double value;
    };

    void resolveMoves();

    std::string m_error;
    render::CProductModule m_module;
    CShape m_shape;
    std::unique_ptr<render::CRenderInstance> m_instance;
    std::vector<std::string> m_settings;
    std::vector<std::pair<std::uint64_t, std::string>> m_events;
    std::vector<CTimed> m_moves; ///< by host parameter and normalised
    std::vector<CTimed> m_timed;
    std::uint64_t m_position = 0;
    bool m_isRunning = false;
};
