// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/CModFilterIIR.h"

#include "Audio/CAudioEnv.h"
#include "Audio/CAudioParamAllocDef.h"
#include "Audio/CAudioParamStorage.h"
#include "Audio/CSampleBufferPool.h"
#include "Audio/Filters/CAudioFilterGenArray.h"
#include "Audio/Filters/CDCDAWFilterWorkspace.h"
#include "Core/CLog.h"

#include <algorithm>
#include <utility>

namespace qrb {

namespace {

/// The stage kinds of the instance that the node belongs to; null outside one.
CDCDAWFilterWorkspace* filterWorkspace(const CAudioProcessBase& node)
{
    CAudioEnv* env = node.context().env;
    return env == nullptr ? nullptr : &env->workspace<CDCDAWFilterWorkspace>();
}

} // namespace

void CModFilterIIRModule::regParams()
{
    m_indexSlot = regParam(0, 0.0);
    m_named.clear();
    m_params.clear();
    for (const auto& [index, alloc] : node().definition().paramAllocs()) {
        if (index != 0)
            m_named.append({regParam(index, 0.0), m_params.add(alloc->slotName())});
    }
}

void CModFilterIIRModule::start()
{
    const CString path = node().definition().getAttrString("gen-array");
    m_array = dynamic_cast<const CAudioFilterGenArray*>(node().definition().findObject(path));
    if (m_array == nullptr)
        logLine(CString("The 'gen-array' '") + path + "' not found.");
    m_bank.setLineCount(static_cast<std::size_t>(outputCount()));
    m_taken.resize(static_cast<std::size_t>(outputCount()));
    m_inputs.resize(static_cast<std::size_t>(outputCount()));
    m_buffers.resize(static_cast<std::size_t>(outputCount()));
}

void CModFilterIIRModule::reset()
{
    m_odd = EOdd::kept;
    m_bank.reset();
}

bool CModFilterIIRModule::isComplete() const
{
    const auto hasValue = [](const CAudioParamSlot& slot) { return !slot.isBound() || slot.storage->hasData(); };
    return hasValue(m_indexSlot) && std::ranges::all_of(m_named, hasValue, &CNamedParam::slot);
}

bool CModFilterIIRModule::pickDesigner()
{
    const int index = valueInt(m_indexSlot);
    if (!m_isRebuildDue && index == m_index)
        return false;
    m_index = index;
    m_designer = m_array == nullptr ? nullptr : m_array->get(index);
    m_bank.clear();
    return true;
}

bool CModFilterIIRModule::takeValues()
{
    bool isChanged = false;
    for (const CNamedParam& named : m_named) {
        const double now = value(named.slot);
        isChanged |= now != std::as_const(m_params).values()[named.place];
        m_params.setValue(named.place, now);
    }
    return isChanged;
}

void CModFilterIIRModule::update()
{
    if (isFirstUpdate()) {
        m_bank.clear();
        m_isRebuildDue = true;
    }
    if (!isComplete())
        return;
    bool isDesignDue = pickDesigner();
    isDesignDue |= takeValues();
    m_isRebuildDue = false;
    if (isDesignDue)
        redesign();
}

void CModFilterIIRModule::redesign()
{
    m_design.clear();
    if (m_designer != nullptr)
        m_designer->design(m_design, sampleRate(), m_params, filterWorkspace(node()));
    m_bank.apply(m_design, sampleRate());
}

bool CModFilterIIRModule::takesForm(ESampleForm form) const
{
    return form == ESampleForm::whole || (form == ESampleForm::stuffed && (m_bank.empty() || m_bank.canRunUp()));
}

bool CModFilterIIRModule::isThinned()
{
    const ELineHearing hearing = node().output().hearing();
    if (hearing == ELineHearing::half) {
        m_odd = EOdd::leftOut;
        return blockLength() % 2 == 0 && m_bank.canRunDown();
    }
    // What was left out begins anew where it may be heard again; while that is not settled, in each block, since it
    // would depend on where blocks end otherwise.
    const bool isSettled = hearing == ELineHearing::all;
    if (m_odd == EOdd::leftOut || (m_odd == EOdd::begun && !isSettled))
        m_bank.forgetOdd();
    if (m_odd != EOdd::kept)
        m_odd = isSettled ? EOdd::kept : EOdd::begun;
    return false;
}

bool CModFilterIIRModule::canRunWith(const CModFilterIIRModule& other) const
{
    if (!m_bank.canRunWith(other.m_bank) || m_bank.lineCount() > CFilterBank::kMaxTogetherLines)
        return false;
    for (int i = 0; i < outputCount(); ++i) {
        if (line(0, i)->buffer.form() != ESampleForm::whole)
            return false;
    }
    return true;
}

void CModFilterIIRModule::processTogether(std::span<CAudioModule* const> modules)
{
    CFilterBank* banks[CFilterBank::kMaxTogetherLines];
    const double* inputs[CFilterBank::kMaxTogetherLines];
    double* outputs[CFilterBank::kMaxTogetherLines];
    std::size_t bankCount = 0;
    std::size_t lines = 0;
    const auto flush = [&] {
        if (bankCount > 0)
            CFilterBank::runTogether({banks, bankCount}, inputs, outputs, static_cast<std::size_t>(blockLength()));
        bankCount = lines = 0;
    };
    for (CAudioModule* const module : modules) {
        auto& mate = static_cast<CModFilterIIRModule&>(*module);
        if (!mate.canRunWith(*this)) { // which no half-bands can, the only ones that leave samples out
            mate.process();
            continue;
        }
        if (lines + mate.m_bank.lineCount() > CFilterBank::kMaxTogetherLines)
            flush();
        banks[bankCount++] = &mate.m_bank;
        for (int i = 0; i < mate.outputCount(); ++i) {
            inputs[lines] = mate.input(0, i);
            outputs[lines++] = mate.writeOutput(i);
        }
    }
    flush();
}

void CModFilterIIRModule::process()
{
    if (m_bank.empty()) {
        for (int i = 0; i < outputCount(); ++i)
            passInput(0, i, i);
        return;
    }
    const auto length = static_cast<std::size_t>(blockLength());
    bool isStuffed = true;
    for (int i = 0; i < outputCount(); ++i)
        isStuffed = isStuffed && line(0, i)->buffer.form() == ESampleForm::stuffed;
    const bool isHalf = !isStuffed && m_bank.hasHalfBands() && isThinned();
    for (int i = 0; i < outputCount(); ++i) {
        const auto place = static_cast<std::size_t>(i);
        const CSampleBuffer& buffer = line(0, i)->buffer;
        m_taken[place] = isStuffed ? buffer : pool().getWhole(buffer, blockLength());
        m_inputs[place] = std::as_const(m_taken[place]).data();
        m_buffers[place] = isHalf ? writeThinned(i) : writeOutput(i);
    }
    if (isStuffed)
        m_bank.runUp(m_inputs.data(), m_buffers.data(), length / 2);
    else if (isHalf)
        m_bank.runDown(m_inputs.data(), m_buffers.data(), length / 2);
    else
        m_bank.run(m_inputs.data(), m_buffers.data(), length);
    for (CSampleBuffer& buffer : m_taken)
        buffer.clear();
}

bool CModFilterIIRModule::processInSeries(std::span<CAudioModule* const> modules)
{
    CArray<CFilterBank*, 32> banks;
    for (CAudioModule* const module : modules) {
        auto& filter = static_cast<CModFilterIIRModule&>(*module);
        if (filter.m_bank.hasHalfBands() || filter.outputCount() != outputCount())
            return false;
        if (!filter.m_bank.empty())
            banks.append(&filter.m_bank);
    }
    auto& last = static_cast<CModFilterIIRModule&>(*modules.back());
    for (int i = 0; i < outputCount(); ++i) {
        const auto place = static_cast<std::size_t>(i);
        if (banks.empty()) {
            last.setOutput(i, line(0, i)->buffer);
            continue;
        }
        m_taken[place] = pool().getWhole(line(0, i)->buffer, blockLength());
        m_inputs[place] = std::as_const(m_taken[place]).data();
        m_buffers[place] = last.writeOutput(i);
    }
    if (!banks.empty())
        CFilterBank::runInSeries(banks.span(), m_inputs.data(), m_buffers.data(),
                                 static_cast<std::size_t>(blockLength()));
    for (CSampleBuffer& buffer : m_taken)
        buffer.clear();
    return true;
}

} // namespace qrb
