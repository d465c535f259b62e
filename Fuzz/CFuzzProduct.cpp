// SPDX-License-Identifier: GPL-3.0-or-later
#include "Fuzz/CFuzzProduct.h"

#include "Audio/CAudioParamCollector.h"
#include "Audio/Interface/CAudioInterfaceBase.h"
#include "Audio/Presets/CAudioParamRegistry.h"
#include "Audio/Presets/CAudioPresetList.h"
#include "Core/CErrorReporter.h"
#include "Core/CMemoryReaderStatic.h"
#include "Core/CWriteSeqBuffer.h"

#include <cmath>
#include <functional>

namespace fuzz {

namespace {

constexpr std::size_t kFrames = 64;
constexpr int kChannels = 2;

class CSilentReporter : public qrb::CErrorReporter {
public:
    void showError(const qrb::CString&) override {}
};

std::vector<std::uint8_t> bytesOf(const qrb::CWriteSeqBuffer& buffer)
{
    qrb::CByteArray bytes;
    buffer.getContiguous(bytes);
    return {bytes.begin(), bytes.end()};
}

void append(std::string& all, const std::vector<std::uint8_t>& bytes)
{
    all.append(bytes.begin(), bytes.end());
}

void appendNames(std::string& all, const qrb::CAudioParamRegistry& master)
{
    qrb::CArray<qrb::CString> names;
    std::int32_t current = 0;
    master.getPresetNames(false, names, current);
    for (const qrb::CString& name : names)
        all += name.toUtf8() + "|";
    all += std::to_string(current);
}

void appendHistory(std::string& all, qrb::CAudioParamCollector& params)
{
    const auto* const undo =
        dynamic_cast<const qrb::CAudioParamUndo*>(params.root().findObject("plugin.interface-base"));
    if (undo == nullptr)
        return;
    qrb::CArray<qrb::CString> labels;
    std::int32_t position = 0;
    undo->getHistory(labels, position);
    for (const qrb::CString& label : labels)
        all += label.toUtf8() + "|";
    all += std::to_string(position);
}

void forEachBound(qrb::CAudioParamCollector& params,
                  const std::function<void(const qrb::CAudioParam&, const qrb::CAudioParamGuard&)>& look)
{
    qrb::CArray<qrb::CAudioParam*> list;
    params.listParams(list);
    const qrb::CAudioParamGuard guard(params);
    for (const qrb::CAudioParam* const param : list)
        if (param->isBound())
            look(*param, guard);
}

void requireValid(const qrb::CAudioParamInfo& info, const qrb::CAudioParamStorage& values, EBounds bounds)
{
    if (info.format.hasItems())
        return;
    for (std::int32_t group = 0; group < values.groupCount(); ++group)
        for (std::size_t i = 0; i < values.cells(group).size(); ++i) {
            const double value = values.cells(group)[i];
            const auto component = static_cast<std::int32_t>(i) % info.format.elementSize;
            require(std::isfinite(value), "values are finite");
            require(bounds == EBounds::any || value == info.clamped(component, value),
                    "values are within their bounds");
        }
}

} // namespace

template <class T>
std::vector<std::uint8_t> savedBytes(const T& what)
{
    qrb::CWriteSeqBuffer buffer;
    requireSuccess(what.save(buffer), "saving");
    return bytesOf(buffer);
}
template std::vector<std::uint8_t> savedBytes(const qrb::CAudioPreset&);
template std::vector<std::uint8_t> savedBytes(const qrb::CAudioPresetBank&);
template std::vector<std::uint8_t> savedBytes(const qrb::CAudioPresetList&);
template std::vector<std::uint8_t> savedBytes(const qrb::CAudioParamStorage&);

std::vector<std::uint8_t> packed(CBytes payload, std::uint32_t chunk)
{
    qrb::CWriteSeqBuffer buffer;
    requireSuccess(buffer.writeCompressedData(payload, chunk), "packing");
    return bytesOf(buffer);
}

std::string stateOf(qrb::CAudioParamCollector& params, qrb::CAudioParamRegistry& master)
{
    std::string all;
    appendNames(all, master);
    appendHistory(all, params);
    forEachBound(params, [&](const qrb::CAudioParam& param, const qrb::CAudioParamGuard& guard) {
        all += param.path().toUtf8();
        append(all, savedBytes(param.editStorage(guard)));
        append(all, savedBytes(param.resetStorage(guard)));
    });
    return all;
}

void requireValidValues(qrb::CAudioParamCollector& params, EBounds bounds)
{
    forEachBound(params, [&](const qrb::CAudioParam& param, const qrb::CAudioParamGuard& guard) {
        requireValid(*param.info(), param.editStorage(guard), bounds);
        requireValid(*param.info(), param.resetStorage(guard), bounds);
        requireValid(*param.info(), param.audioStorage(), bounds);
    });
}

CFuzzProduct& CFuzzProduct::instance()
{
    // Never destroyed: the process ends in the middle of its work as a rule.
    static CFuzzProduct& product = *new CFuzzProduct;
    return product;
}

CFuzzProduct::CFuzzProduct() : m_module(m_error)
{
    static CSilentReporter& reporter = *new CSilentReporter;
    static_cast<void>(reporter);
    require(m_module.isEntered(), "the module can be entered");
    m_instance = std::make_unique<render::CRenderInstance>();
    requireSuccess(m_instance->init(), "the instance");
    m_instance->setInputs({kChannels, true, false}, {}, nullptr);
    m_instance->setOutputs({kChannels, true, false});
    m_instance->start();
    m_instance->runIdle();
    m_start = saved();
    reset();
}

std::vector<std::uint8_t> CFuzzProduct::saved()
{
    qrb::CWriteSeqBuffer buffer;
    requireSuccess(m_instance->saveState(buffer), "a state can be saved");
    return bytesOf(buffer);
}

void CFuzzProduct::reset()
{
    qrb::CMemoryReaderStatic in(m_start);
    requireSuccess(m_instance->loadState(in), "the first state can be loaded");
    require(saved() == m_start, "the first state comes back");
    requireSuccess(master().setDefaultPreset(qrb::CAudioPreset(master().capture(-1))), "the defaults come back");
    play();
}

void CFuzzProduct::restart()
{
    m_instance->stop();
    for (qrb::CAudioParam* const param : boundParams())
        param->resetValues(-1, -1);
    m_instance->start();
    reset();
}

qrb::CArray<qrb::CAudioParam*> CFuzzProduct::boundParams()
{
    qrb::CArray<qrb::CAudioParam*> all;
    qrb::CArray<qrb::CAudioParam*> bound;
    params().listParams(all);
    for (qrb::CAudioParam* const param : all)
        if (param->isBound())
            bound.append(param);
    return bound;
}

void CFuzzProduct::play(EBounds bounds)
{
    static double samples[kChannels][kFrames];
    static double played[kChannels][kFrames];
    for (std::size_t i = 0; i < kFrames; ++i)
        samples[0][i] = samples[1][kFrames - 1 - i] = 0.5 - static_cast<double>(i * i * 37 % 101) / 101.0;
    const void* const in[] = {samples[0], samples[1]};
    void* const out[] = {played[0], played[1]};
    m_instance->processBlock(in, out, static_cast<int>(kFrames));
    m_instance->runIdle();
    for (const auto& channel : played)
        for (const double sample : channel)
            require(bounds == EBounds::any || std::isfinite(sample), "the output is finite");
    requireValidValues(params(), bounds);
}

qrb::CAudioParamRegistry& CFuzzProduct::registry(std::size_t index)
{
    const auto all = params().registries();
    return *all[index % all.size()];
}

} // namespace fuzz
