// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/CModFilterIIR.h"

#include "Audio/CAudioEnv.h"
#include "Audio/CAudioParamAllocDef.h"
#include "Audio/CAudioParamStorage.h"
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
    m_inputs.resize(static_cast<std::size_t>(outputCount()));
    m_buffers.resize(static_cast<std::size_t>(outputCount()));
}

void CModFilterIIRModule::reset()
{
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

void CModFilterIIRModule::process()
{
    if (m_bank.empty()) {
        for (int i = 0; i < outputCount(); ++i)
            passInput(0, i, i);
        return;
    }
    for (int i = 0; i < outputCount(); ++i) {
        m_inputs[static_cast<std::size_t>(i)] = input(0, i);
        m_buffers[static_cast<std::size_t>(i)] = writeOutput(i);
    }
    m_bank.run(m_inputs.data(), m_buffers.data(), static_cast<std::size_t>(blockLength()));
}

} // namespace qrb
