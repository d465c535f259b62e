// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParamBinding.h"

#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioParamDef.h"
#include "Audio/CAudioParamPath.h"
#include "Audio/CAudioParamRemapDef.h"
#include "Audio/CAudioParamSharedStorage.h"
#include "Audio/CAudioProcessDef.h"
#include "Audio/CAudioProcessStack.h"

namespace qrb {

namespace {

void enterRemaps(CAudioParamCollector& collector, const CAudioProcessDefBase& definition, const CString& name)
{
    for (const auto& entry : definition.paramRemaps()) {
        for (const CAudioParamRemapDef::CPair& pair : entry.object->pairs()) {
            collector.addRename(resolveParamPath(name, pair.original), resolveParamPath(name, pair.renamed));
        }
    }
}

/// The declaration at the target of an alias wins, so an alias is never bound to its own.
void bindParams(CAudioParamCollector& collector, const CAudioProcessDefBase& definition, const CString& name)
{
    for (const auto& entry : definition.params()) {
        const CString path = name + entry.name;
        if (!collector.isRenamed(path)) {
            // At once: a default is no change that modules would cross over to.
            collector.getParam(path).bindInfo(entry.object->info(), nullptr, {nullptr, true});
        }
    }
}

void linkSharedStorages(CAudioParamCollector& collector, const CAudioProcessDefBase& definition, const CString& name)
{
    for (const auto& entry : definition.sharedStorages()) {
        collector.addSharedParam(resolveParamPath(name, entry.object->paramName()), entry.object->storage(),
                                 entry.object->dataName());
    }
}

/// Which instances of a stack are visited.
enum class EStackVisit { first, all };

/// Visits a definition and what its parent instantiates of its children, parents first. The depth is that of the object
/// tree, which is bounded.
template <class F>
void visitTree(const CAudioProcessDefBase& definition, const CString& name, EStackVisit stacks, const F& visit)
{
    const bool isChain = stacks == EStackVisit::all && definition.isStacked() && !definition.stackParam().empty();
    const auto* process = dynamic_cast<const CAudioProcessDef*>(&definition);
    for (int element = 0; element < (isChain ? CAudioProcessStack::kMaxInstances : 1); ++element) {
        const CString instance = CAudioProcessStack::instanceName(name, element);
        visit(definition, instance);
        if (process == nullptr) {
            continue;
        }
        for (const CAudioProcessDefBase* child : process->processes()) {
            if (!child->isPrototype()) {
                visitTree(*child, instance + "." + child->getName(), stacks, visit);
            }
        }
    }
}

} // namespace

void declareProcessTree(CAudioParamCollector& collector, const CAudioProcessDefBase& definition, const CString& name)
{
    // All aliases first, since they decide which declarations are bound. Parameters that are not global are bound
    // along with the others, and those of stacks for the longest chain, so that the audio thread finds all of them bound
    // and need not wait for their lock.
    visitTree(definition, name, EStackVisit::all,
              [&](const auto& def, const CString& path) { enterRemaps(collector, def, path); });
    visitTree(definition, name, EStackVisit::all,
              [&](const auto& def, const CString& path) { bindParams(collector, def, path); });
    visitTree(definition, name, EStackVisit::first, [&](const auto& def, const CString& path) {
        linkSharedStorages(collector, def, path);
        // Filters between parameters attach here, when all they read and write is bound.
    });
}

void declareProcessParams(CAudioParamCollector& collector, const CAudioProcessDefBase& definition, const CString& name)
{
    enterRemaps(collector, definition, name);
    bindParams(collector, definition, name);
}

} // namespace qrb
