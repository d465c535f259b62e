// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/CModFilterFIR.h"

#include "Audio/CAudioParamAllocDef.h"
#include "Audio/CAudioParamStorage.h"
#include "Audio/CSampleBufferPool.h"
#include "Audio/Filters/CAudioFilterGenArray.h"
#include "Core/CLog.h"
#include "Core/CNumberText.h"
#include "Core/CProcessState.h"
#include "Platform/CBlockTransformPool.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace qrb {

namespace {

/// Limit of counts that come from parameters.
constexpr int kMaxElements = 32;
constexpr double kFixedRate = 44100.0;

bool hasValue(const CAudioParamSlot& slot)
{
    return !slot.isBound() || slot.storage->hasData();
}

} // namespace

CAudioParamSlot* CModFilterFIRModule::specialSlot(const CString& name)
{
    const struct {
        const char* name;
        CAudioParamSlot& slot;
    } specials[] = {{"count", m_count},      {"index", m_index},       {"latency", m_log2Block}, {"fixsr", m_fixedRate},
                    {"points", m_points[0]}, {"points2", m_points[1]}, {"points3", m_points[2]}};
    const auto* found = std::ranges::find_if(specials, [&](const auto& special) { return name == special.name; });
    return found == std::end(specials) ? nullptr : &found->slot;
}

void CModFilterFIRModule::regParams()
{
    m_count.unbound = 1.0;
    m_log2Block.unbound = 7.0;
    m_named.clear();
    for (const auto& [index, alloc] : node().definition().paramAllocs()) {
        const CString name = alloc->slotName();
        if (CAudioParamSlot* special = specialSlot(name))
            *special = regParam(index, special->unbound);
        else
            m_named.append({regParam(index, 0.0), name});
    }
}

void CModFilterFIRModule::start()
{
    const CString path = node().definition().getAttrString("gen-array");
    m_array = dynamic_cast<const CAudioFilterGenArray*>(node().definition().findObject(path));
    if (m_array == nullptr)
        logLine(CString("The 'gen-array' '") + path + "' not found.");
    m_isZeroLatency = node().definition().getAttrBool("is-zero-latency");
    m_filters.resize(static_cast<std::size_t>(outputCount()));
}

void CModFilterFIRModule::reset()
{
    for (CFilterFIR& filter : m_filters)
        filter.reset();
    for (CPhasedFIR& filter : m_phased)
        filter.reset();
}

bool CModFilterFIRModule::isComplete() const
{
    return std::ranges::all_of(m_named, hasValue, &CNamedParam::slot) && std::ranges::all_of(m_points, hasValue) &&
           hasValue(m_count) && hasValue(m_index) && hasValue(m_log2Block) && hasValue(m_fixedRate);
}

CModFilterFIRModule::CRequest CModFilterFIRModule::readRequest() const
{
    CRequest request;
    request.sampleRate = sampleRate();
    request.log2Block =
        std::clamp(valueInt(m_log2Block), CPartitionedConvolver::kMinLog2Block, CPartitionedConvolver::kMaxLog2Block);
    const int count = std::clamp(valueInt(m_count), 0, kMaxElements);
    for (int e = element(); e < element() + count; ++e) {
        CElement& made = request.elements.emplace();
        made.index = m_index.valueInt(group(), e);
        made.isFixedRate = m_fixedRate.value(group(), e) >= 0.5;
        for (const CNamedParam& named : m_named)
            made.values.append(named.slot.value(group(), e));
    }
    for (std::size_t i = 0; i < kPointLists; ++i) {
        for (int e = 0; e < m_points[i].elementCount(group()); ++e)
            request.points[i].append(m_points[i].value(group(), e));
    }
    return request;
}

void CModFilterFIRModule::update()
{
    if (!isComplete()) {
        m_request = {};
        setTaps({});
        setLatency(0);
        return;
    }
    CRequest request = readRequest();
    if (!isFirstUpdate() && request == m_request)
        return;
    m_request = std::move(request);
    build();
}

void CModFilterFIRModule::build()
{
    setTaps({});
    setLatency(0);
    if (m_array == nullptr)
        return;
    CAudioFilterStageList list;
    for (const CElement& element : m_request.elements)
        design(list, element);
    const auto count = std::ranges::count_if(list.stages(), &CAudioFilterStage::isFinite);
    if (count > 1)
        logLine(CString("FIR filter combining was not implemented yet! // ") + node().fullName());
    if (count != 1)
        return;
    const auto stage = std::ranges::find_if(list.stages(), &CAudioFilterStage::isFinite);
    const std::span<const double> taps = stage->b.span();
    if (taps.empty() || !std::ranges::all_of(taps, [](double tap) { return std::isfinite(tap); }))
        return;
    setTaps(taps);
    setLatency(list.latency() + (m_isZeroLatency ? 0 : 1 << m_request.log2Block));
}

void CModFilterFIRModule::design(CAudioFilterStageList& list, const CElement& element) const
{
    const CAudioFilterGen* designer = m_array->get(element.index);
    if (designer == nullptr)
        return;
    CAudioFilterParams params;
    for (std::size_t i = 0; i < m_named.size(); ++i)
        params.set(m_named[i].name, element.values[i]);
    if (m_points[0].isBound()) {
        const auto addCount = [&params](const char* name, std::size_t count) {
            if (!params.has(name))
                params.set(name, static_cast<double>(count));
        };
        addCount("element-size", m_named.size());
        addCount("element-count", m_request.points[0].size());
        addCount("element-count2", m_request.points[1].size());
        addCount("element-count3", m_request.points[2].size());
        for (const auto& points : m_request.points)
            params.appendUnnamed(points.span());
    }
    designer->design(list, element.isFixedRate ? kFixedRate : sampleRate(), params, nullptr);
}

void CModFilterFIRModule::setTaps(std::span<const double> taps)
{
    m_taps.clear();
    m_taps.appendAll(taps);
    m_phased.clear();
    platform::CBlockTransformPool& plans = *processState().blockTransforms;
    for (CFilterFIR& filter : m_filters) {
        if (m_isZeroLatency)
            filter.setZeroLatency(taps, plans);
        else
            filter.setPartitioned(taps, m_request.log2Block, plans);
    }
}

bool CModFilterFIRModule::canPhase() const
{
    return m_isZeroLatency || m_request.log2Block >= CPhasedFIR::kMinLog2Block;
}

bool CModFilterFIRModule::takesForm(ESampleForm form) const
{
    return form == ESampleForm::whole || (form == ESampleForm::stuffed && (m_taps.empty() || canPhase()));
}

bool CModFilterFIRModule::isPhased()
{
    if (!canPhase() || blockLength() % 2 != 0)
        return false;
    if (!m_phased.empty())
        return true;
    if (!node().output().isThinned() && !node().input().isStuffed())
        return false;
    platform::CBlockTransformPool& plans = *processState().blockTransforms;
    m_phased.resize(m_filters.size());
    for (CPhasedFIR& filter : m_phased) {
        if (m_isZeroLatency)
            filter.setZeroLatency(m_taps.span(), plans);
        else
            filter.setPartitioned(m_taps.span(), m_request.log2Block, plans);
    }
    return true;
}

void CModFilterFIRModule::runPhased(int index)
{
    const CSampleBuffer& buffer = line(0, index)->buffer;
    const int pairs = blockLength() / 2;
    const auto count = static_cast<std::size_t>(pairs);
    CSampleBuffer even = pool().get(pairs);
    CSampleBuffer odd = pool().get(pairs);
    const double* const in = std::as_const(buffer).data();
    const bool isStuffed = buffer.form() == ESampleForm::stuffed;
    if (isStuffed)
        std::transform(in, in + count, even.data(), [](double sample) { return 2.0 * sample; });
    else
        convolverKernels().takeApart(in, even.data(), odd.data(), count);
    CPhasedFIR& filter = m_phased[static_cast<std::size_t>(index)];
    const CPhasesIn phases{even.data(), isStuffed ? nullptr : odd.data()};
    if (node().output().hearing() == ELineHearing::half) {
        filter.process(phases, {writeThinned(index), nullptr}, count);
        return;
    }
    CSampleBuffer evenOut = pool().get(pairs);
    CSampleBuffer oddOut = pool().get(pairs);
    filter.process(phases, {evenOut.data(), oddOut.data()}, count);
    convolverKernels().interleave(evenOut.data(), oddOut.data(), writeOutput(index), count);
}

void CModFilterFIRModule::process()
{
    if (m_taps.empty()) {
        for (int i = 0; i < outputCount(); ++i)
            passInput(0, i, i);
        return;
    }
    if (isPhased()) {
        for (int i = 0; i < outputCount(); ++i)
            runPhased(i);
        return;
    }
    for (int i = 0; i < outputCount(); ++i) {
        const CSampleBuffer whole = pool().getWhole(line(0, i)->buffer, blockLength());
        m_filters[static_cast<std::size_t>(i)].process(whole.data(), writeOutput(i),
                                                       static_cast<std::size_t>(blockLength()));
    }
}

} // namespace qrb
