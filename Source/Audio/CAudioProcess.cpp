// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioProcess.h"

#include "Audio/CAudioProcessBypassStateDef.h"
#include "Audio/CAudioProcessDef.h"
#include "Audio/CAudioProcessOrder.h"
#include "Audio/CAudioProcessWiring.h"
#include "Core/CLog.h"

#include <algorithm>
#include <utility>

namespace qrb {

CAudioProcess::CAudioProcess() = default;

CAudioProcess::~CAudioProcess()
{
    for (const auto& state : m_graph.states) {
        detachParam(state->param);
        detachParam(state->andParam);
    }
}

CErrorPtr CAudioProcess::init()
{
    m_processDef = dynamic_cast<const CAudioProcessDef*>(&definition());
    if (m_processDef == nullptr) {
        return QRB_ERROR(
            "@qrbstr_CAudioProcess_init_ProcessDefClassInvalid Audio process def of invalid class supplied.");
    }
    for (const CAudioProcessDefBase* child : m_processDef->processes()) {
        if (!child->isPrototype()) {
            QRB_TRY(addProcess(*child, child->getName()));
        }
    }
    initStates();
    return nullptr;
}

void CAudioProcess::initStates()
{
    for (const CAudioProcessBypassStateDef* definition : m_processDef->bypassStates()) {
        CAudioBypassStateRec& state = *m_graph.states.append(std::make_unique<CAudioBypassStateRec>());
        state.definition = definition;
        attachParam(state.param, definition->param(), groupIndex(), elementIndex(), &m_statesDirty);
        if (!definition->andParam().empty()) {
            attachParam(state.andParam, definition->andParam(), groupIndex(), elementIndex(), &m_statesDirty);
        }
    }
}

CErrorPtr CAudioProcess::addProcess(const CAudioProcessDefBase& definition, const CString& name)
{
    if (m_graph.findItem(name) != nullptr) {
        return QRB_ERROR("@qrbstr_CAudioProcess_addProcess_DupeName Duplicate audio process name '%1'.", name);
    }
    CAudioProcessItem& item = *m_graph.items.append(std::make_unique<CAudioProcessItem>());
    item.name = fullName() + "." + name;
    item.definition = &definition;
    item.index = m_graph.items.size() < 2 ? 0 : m_graph.items[m_graph.items.size() - 2]->index + 1;
    item.isNode = definition.tag() == "audio:modNode";
    m_graph.itemsByName.emplace(name, &item);
    m_isRebuildDue = true;
    return nullptr;
}

void CAudioProcess::removeProcess(const CString& name)
{
    if (CAudioProcessItem* item = m_graph.findItem(name)) {
        item->isEnabled = false;
        m_isCleanupDue = true;
        m_isRebuildDue = true;
    }
}

CAudioProcessBase* CAudioProcess::findNode(const CString& name)
{
    const CAudioProcessItem* item = m_graph.findItem(name);
    return item == nullptr ? nullptr : item->node.get();
}

void CAudioProcess::update()
{
    if (isConfigurationChanged()) {
        announceInner();
    }
    (void)takeParamChanges();
    const bool hasNewStates = updateStates();
    const bool isRebuildDue = std::exchange(m_isRebuildDue, false);
    if (hasNewStates || isRebuildDue) {
        rewire();
    }
}

bool CAudioProcess::updateStates()
{
    if (std::exchange(m_statesDirty, std::uint8_t{0}) == 0) {
        return false;
    }
    bool isChanged = false;
    for (const auto& state : m_graph.states) {
        isChanged = state->evaluate(std::max(groupIndex(), 0), elementIndex()) || isChanged;
    }
    return isChanged;
}

void CAudioProcess::rewire()
{
    sequenceStore().clear();
    CAudioProcessWiring(m_graph, *m_processDef).countLinks();
    for (const auto& item : m_graph.items) {
        if (!item->isNode) {
            applyLinks(item->links, item.get());
        }
    }
    applyLinks(m_graph.outputLinks, nullptr);
    destroyUnused();
    for (const auto& item : m_graph.items) {
        item->links.dropUnused();
    }
    m_graph.outputLinks.dropUnused();
    if (std::exchange(m_isCleanupDue, false)) {
        dropDisabled();
    }
    if (!orderNodes(m_graph, sequenceStore())) {
        logFormat("process seq err %s", fullName().toUtf8().c_str());
    }
}

void CAudioProcess::applyLinks(CAudioProcessLinkList& links, CAudioProcessItem* destination)
{
    for (CAudioProcessLink& link : links.links()) {
        if (link.newCount == 0 && link.oldCount > 0) {
            disconnectLink(link, destination);
        } else if (link.newCount > 0 && link.oldCount == 0) {
            if (createNode(link.source) && createNode(destination)) {
                connectLink(link, destination);
            } else {
                link.newCount = 0;
            }
        }
    }
}

bool CAudioProcess::createNode(CAudioProcessItem* item)
{
    if (item == nullptr || item->node != nullptr) {
        return true;
    }
    if (!item->isEnabled) {
        return false;
    }
    const CAudioProcessSetup setup{context(),    item->definition, item->name,
                                   groupIndex(), elementIndex(),   EExpansion::all};
    const CErrorPtr error = instantiateProcess(setup, item->node);
    if (error) {
        // The chain closes around a child that cannot be made.
        logError(error);
        item->isEnabled = false;
        m_isRebuildDue = true;
        return false;
    }
    return true;
}

void CAudioProcess::connectLink(const CAudioProcessLink& link, CAudioProcessItem* destination)
{
    CAudioLineSource& source = link.source == nullptr ? innerInput() : link.source->node->output();
    CAudioLineSink& sink = destination == nullptr ? innerOutput() : destination->node->input();
    const int rank = link.source == nullptr ? 0 : link.source->index + 1;
    source.connect(link.sourcePort, sink, link.destinationPort,
                   rank * kMaxPorts + std::min(link.sourcePort, kMaxPorts - 1));
    for (CAudioProcessItem* item : {link.source, destination}) {
        if (item != nullptr) {
            ++item->useCount;
        }
    }
}

void CAudioProcess::disconnectLink(const CAudioProcessLink& link, CAudioProcessItem* destination)
{
    CAudioLineSource& source = link.source == nullptr ? innerInput() : link.source->node->output();
    CAudioLineSink& sink = destination == nullptr ? innerOutput() : destination->node->input();
    source.disconnect(link.sourcePort, sink, link.destinationPort);
    for (CAudioProcessItem* item : {link.source, destination}) {
        if (item != nullptr) {
            --item->useCount;
        }
    }
}

void CAudioProcess::destroyUnused()
{
    for (const auto& item : m_graph.items) {
        if (item->node != nullptr && item->useCount == 0) {
            item->node->disconnectAll();
            item->node.reset();
        }
    }
}

void CAudioProcess::dropDisabled()
{
    for (auto entry = m_graph.itemsByName.begin(); entry != m_graph.itemsByName.end();) {
        entry = entry->second->isEnabled ? std::next(entry) : m_graph.itemsByName.erase(entry);
    }
    for (std::size_t i = m_graph.items.size(); i > 0; --i) {
        if (!m_graph.items[i - 1]->isEnabled) {
            m_graph.items.removeAt(i - 1);
        }
    }
}

} // namespace qrb
