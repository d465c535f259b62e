// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tests/Product/CProductRig.h"

#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioParamConverter.h"
#include "Audio/HostParams/CAudioExtParam.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <map>
#include <random>

int promisedLatency(double sampleRate)
{
    return 502 + static_cast<int>(std::floor(0.005 * sampleRate + 0.5));
}

CChannels makeNoise(std::size_t channelCount, std::size_t frames, std::uint32_t seed)
{
    std::mt19937 engine(seed);
    CChannels channels(channelCount, std::vector<double>(frames));
    for (std::vector<double>& channel : channels)
        for (double& sample : channel)
            sample = static_cast<double>(engine()) / 4294967296.0 - 0.5;
    return channels;
}

CChannels makeOnes(std::size_t channelCount, std::size_t frames)
{
    return CChannels(channelCount, std::vector<double>(frames, 1.0));
}

double largestDifference(const std::vector<double>& out, const std::vector<double>& in, std::size_t delay)
{
    double largest = 0.0;
    for (std::size_t i = delay; i < out.size(); ++i)
        largest = std::max(largest, std::abs(out[i] - in[i - delay]));
    return largest;
}

double largestStep(const std::vector<double>& samples)
{
    double largest = 0.0;
    for (std::size_t i = 1; i < samples.size(); ++i)
        largest = std::max(largest, std::abs(samples[i] - samples[i - 1]));
    return largest;
}

CProductRig::CProductRig(const CShape& shape) : m_module(m_error), m_shape(shape)
{
    EXPECT_TRUE(m_module.isEntered()) << m_error;
    m_instance = std::make_unique<render::CRenderInstance>();
    const qrb::CErrorPtr failed = m_instance->init();
    EXPECT_FALSE(failed) << (failed ? failed->text().toUtf8() : std::string());
    m_instance->setSampleRate(shape.sampleRate);
    set("modThumpcraft.xo-count=" + std::to_string(shape.bands - 1));
}

CProductRig::~CProductRig()
{
    if (m_isRunning)
        m_instance->stop();
    m_instance.reset();
}

CProductRig& CProductRig::set(const std::string& setting)
{
    m_settings.push_back(setting);
    return *this;
}

CProductRig& CProductRig::at(std::uint64_t frame, const std::string& setting)
{
    m_events.emplace_back(frame, setting);
    return *this;
}

CProductRig& CProductRig::move(std::uint64_t frame, int hostParam, double normal)
{
    m_moves.push_back({frame, hostParam, normal});
    return *this;
}

void CProductRig::resolveMoves()
{
    std::map<int, int> targets;
    for (const CTimed& each : m_moves) {
        const qrb::CAudioExtParam& row = *m_instance->extParams()[static_cast<std::size_t>(each.index)];
        if (!targets.contains(each.index))
            targets[each.index] = m_instance->addTarget({&row.param(), row.group(), row.element()});
        const qrb::CAudioParamInfo& info = *row.param().info();
        m_timed.push_back(
            {each.frame, targets[each.index], info.components[0].converter->fromNormal(info, 0, each.value)});
    }
}

void CProductRig::start()
{
    if (m_isRunning)
        return;
    m_isRunning = true;
    m_instance->setInputs({m_shape.inputs, true, false}, {m_shape.sidechains, true, false}, nullptr);
    m_instance->setOutputs({m_shape.outputs, true, false});
    m_instance->start(); // nodes bring the definitions of their parameters
    for (const std::string& text : m_settings)
        change(text);
    restart();
    std::string error;
    for (const auto& [frame, text] : m_events) {
        const std::optional<render::CSetting> setting = render::parseSetting(text, error);
        render::CRenderInstance::CTarget target;
        EXPECT_TRUE(setting && m_instance->resolve(*setting, target, error)) << error;
        m_timed.push_back({frame, m_instance->addTarget(target), target.value});
    }
    resolveMoves();
}

void CProductRig::change(const std::string& setting)
{
    std::string error;
    const std::optional<render::CSetting> read = render::parseSetting(setting, error);
    EXPECT_TRUE(read && m_instance->apply(*read, error)) << error;
}

void CProductRig::restart()
{
    m_instance->stop();
    m_instance->start();
    m_instance->paramCollector().runDeferred();
}

CChannels CProductRig::run(const CChannels& in, std::size_t blockSize)
{
    start();
    const std::size_t frames = in.empty() ? 0 : in[0].size();
    const auto mains = static_cast<std::size_t>(m_shape.inputs);
    CChannels out(static_cast<std::size_t>(m_shape.outputs), std::vector<double>(frames));
    std::vector<const void*> inputs(mains);
    std::vector<const void*> keys(in.size() - mains);
    std::vector<void*> outputs(out.size());
    for (std::size_t position = 0; position < frames; position += blockSize) {
        const std::size_t count = std::min(blockSize, frames - position);
        for (std::size_t channel = 0; channel < in.size(); ++channel)
            (channel < mains ? inputs[channel] : keys[channel - mains]) = in[channel].data() + position;
        for (std::size_t channel = 0; channel < out.size(); ++channel)
            outputs[channel] = out[channel].data() + position;
        for (const CTimed& event : m_timed)
            if (event.frame >= m_position && event.frame < m_position + count)
                m_instance->addEvent({static_cast<int>(event.frame - m_position), qrb::EExternalEventKind::parameter,
                                      event.index, event.value});
        m_instance->setInputs({m_shape.inputs, true, false}, {m_shape.sidechains, true, false}, keys.data());
        m_instance->processBlock(inputs.data(), outputs.data(), static_cast<int>(count));
        m_position += count;
    }
    return out;
}
