// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioProcessBase.h"

#include "Audio/CAudioGraphChanges.h"
#include "Audio/CAudioParamAllocDef.h"
#include "Audio/CAudioParamBinding.h"
#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioParamPath.h"
#include "Audio/CAudioProcessConnection.h"
#include "Audio/CAudioProcessDefBase.h"
#include "Core/CLog.h"

#include <algorithm>
#include <utility>

namespace qrb {

CAudioProcessBase::CAudioProcessBase()
{
    declarePort(0);
}

CAudioProcessBase::~CAudioProcessBase()
{
    // Whoever fed it may be in no plan and so tell nothing, and its own input is not settled any more.
    noteStructureChange();
    for (CAudioBoundParam& param : m_boundParams) {
        detachParam(param);
    }
}

CErrorPtr CAudioProcessBase::init()
{
    return nullptr;
}

void CAudioProcessBase::reset()
{
    releaseInputs();
    for (CAudioProcessConnection* connection : m_input.connections()) {
        connection->reset();
    }
}

void CAudioProcessBase::update() {}

void CAudioProcessBase::onCreated() {}

void CAudioProcessBase::processLines() {}

bool CAudioProcessBase::takesForm(ESampleForm form) const
{
    return form == ESampleForm::whole;
}

void CAudioProcessBase::process()
{
    runInputStep();
    processLines();
    releaseInputs();
}

void CAudioProcessBase::processPlanned()
{
    runPlannedInputStep();
    processLines();
    releasePlannedInputs();
}

const CAudioLine* CAudioProcessBase::passedLine(int)
{
    return nullptr;
}

void CAudioProcessBase::requestUpdate()
{
    if (m_context.changes != nullptr) {
        ++m_context.changes->requests;
    }
}

void CAudioProcessBase::noteStructureChange()
{
    if (m_context.changes != nullptr) {
        ++m_context.changes->structure;
    }
}

void CAudioProcessBase::disconnectAll()
{
    m_input.disconnectAll();
}

CErrorPtr CAudioProcessBase::setUp(const CAudioProcessSetup& setup)
{
    m_context = setup.context;
    m_definition = setup.definition;
    m_name = setup.name;
    m_paramName = paramProcessName(m_name);
    m_groupIndex = setup.groupIndex;
    m_elementIndex = setup.elementIndex + setup.definition->stackIndexShift();
    if (m_context.collector != nullptr) {
        bindParams();
    }
    onCreated();
    QRB_TRY(init());
    return nullptr;
}

void CAudioProcessBase::bindParams()
{
    declareProcessParams(*m_context.collector, *m_definition, m_paramName);
    const auto& allocs = m_definition->paramAllocs();
    m_boundParams.resize(allocs.size());
    std::size_t place = 0;
    for (const auto& [index, alloc] : allocs) {
        CAudioBoundParam& param = m_boundParams[place++];
        param.index = index;
        param.isSmooth = alloc->isSmoothUpdate();
        param.isAllGroups = alloc->useAllGroups();
        param.isAllElements = alloc->useAllElements();
        attachParam(param, alloc->paramName(), param.isAllGroups ? -1 : m_groupIndex,
                    param.isAllElements ? -1 : m_elementIndex, &m_paramsDirty);
        m_allocCount = index + 1;
    }
    m_paramsDirty = 1;
}

void CAudioProcessBase::attachParam(CAudioBoundParam& param, const CString& path, int group, int element,
                                    std::uint8_t* dirtyFlag)
{
    if (m_context.collector == nullptr) {
        return;
    }
    param.param = &m_context.collector->getParam(resolveParamPath(m_paramName, path));
    param.reader = param.param->attachReader(param.storage, dirtyFlag, &param.mask, group, element);
}

void CAudioProcessBase::detachParam(CAudioBoundParam& param)
{
    if (param.reader != nullptr) {
        param.param->detachReader(std::exchange(param.reader, nullptr));
    }
}

CAudioParamSlot CAudioProcessBase::regParam(int index, double unbound) const
{
    for (const CAudioBoundParam& param : m_boundParams) {
        if (param.index == index) {
            return {param.storage, index, unbound};
        }
    }
    logFormat("regModuleParam error %i", index);
    return {nullptr, index, unbound};
}

bool CAudioProcessBase::takeParamChanges()
{
    if (std::exchange(m_paramsDirty, std::uint8_t{0}) == 0) {
        return false;
    }
    for (CAudioBoundParam& param : m_boundParams) {
        param.touched = std::exchange(param.mask, 0u);
    }
    return true;
}

void CAudioProcessBase::addDelayedUpdate(double seconds, std::uint8_t* dirtyFlag)
{
    m_delayedUpdates.append({seconds, dirtyFlag});
    requestUpdate();
}

void CAudioProcessBase::cancelDelayedUpdates(const std::uint8_t* dirtyFlag)
{
    for (std::size_t i = m_delayedUpdates.size(); i > 0; --i) {
        if (m_delayedUpdates[i - 1].dirtyFlag == dirtyFlag) {
            m_delayedUpdates.removeAt(i - 1);
        }
    }
}

void CAudioProcessBase::runDelayedUpdates()
{
    const double seconds = m_blockLength / m_sampleRate;
    for (std::size_t i = 0; i < m_delayedUpdates.size();) {
        CDelayedUpdate& entry = m_delayedUpdates[i];
        entry.seconds -= seconds;
        if (entry.seconds > 0.0) {
            ++i;
            requestUpdate();
            continue;
        }
        *entry.dirtyFlag = 1;
        m_delayedUpdates.removeAt(i);
    }
}

} // namespace qrb
