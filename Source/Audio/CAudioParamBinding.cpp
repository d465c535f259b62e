// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParamBinding.h"

#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioParamDef.h"
#include "Audio/CAudioParamPath.h"
#include "Audio/CAudioParamRemapDef.h"
#include "Audio/CAudioParamSharedStorage.h"
#include "Audio/CAudioProcessDefBase.h"
#include "Audio/CAudioProcessMB.h"
#include "Audio/ParamFilters/CAudioParamFilterDef.h"

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

CErrorPtr addFilters(CAudioParamCollector& collector, const CAudioProcessDefBase& definition, const CString& name)
{
    for (const auto& entry : definition.paramFilters()) {
        QRB_TRY(entry.object->addTo(collector, name));
    }
    return nullptr;
}

/// Visits a definition and all that its nodes instantiate, outer ones first: `visit(definition, path, commonPath)`, the
/// latter empty or another path that remaps may know it under. Documents are trusted not to contain themselves.
template <class F>
void visitTree(const CAudioInnerProcess& process, EExpansion expansion, const F& visit, const CString& commonPath = {})
{
    visit(process.definition, process.name, commonPath);
    const auto enter = [&](const CAudioInnerProcess& inner, EExpansion innerExpansion) {
        const CString path = process.name + "." + inner.name;
        visitTree({inner.definition, path}, innerExpansion, visit,
                  inner.commonName.empty() ? CString() : process.name + "." + inner.commonName);
    };
    if (process.definition.isMultiband() && expansion != EExpansion::done) {
        CAudioProcessMB::visitParts(process.definition, enter);
    } else {
        process.definition.visitInner([&](const CAudioInnerProcess& inner) { enter(inner, EExpansion::all); });
    }
}

} // namespace

CErrorPtr declareProcessTree(CAudioParamCollector& collector, const CAudioProcessDefBase& definition,
                             const CString& name)
{
    // All aliases first, since they decide which declarations are bound. Parameters that are not global are bound
    // along with the others, so that the audio thread finds them bound and need not wait for their lock.
    const auto visitAll = [&](const auto& visit) { visitTree({definition, name}, EExpansion::all, visit); };
    visitAll([&](const auto& def, const CString& path, const CString&) { enterRemaps(collector, def, path); });
    visitAll([&](const auto&, const CString& path, const CString& commonPath) {
        if (!commonPath.empty()) {
            collector.addTwinRenames(commonPath + ".", path + ".");
        }
    });
    visitAll([&](const auto& def, const CString& path, const CString&) { bindParams(collector, def, path); });
    // All that filters and links read and write is bound by now.
    CErrorPtr failed;
    visitAll([&](const auto& def, const CString& path, const CString&) {
        linkSharedStorages(collector, def, path);
        if (!failed) {
            failed = addFilters(collector, def, path);
        }
    });
    return failed;
}

void declareProcessParams(CAudioParamCollector& collector, const CAudioProcessDefBase& definition, const CString& name)
{
    enterRemaps(collector, definition, name);
    bindParams(collector, definition, name);
}

} // namespace qrb
