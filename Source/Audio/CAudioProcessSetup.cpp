// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioProcessSetup.h"

#include "Audio/CAudioParamBinding.h"
#include "Audio/CAudioProcessBase.h"
#include "Audio/CAudioProcessDefBase.h"
#include "Audio/CAudioProcessMB.h"
#include "Audio/CAudioProcessStack.h"

namespace qrb {

namespace {

/// What a definition becomes. Each expansion has its row here: those that are asked for first stand around the others.
std::unique_ptr<CAudioProcessBase> makeNode(const CAudioProcessDefBase& definition, EExpansion expansion)
{
    if (definition.isStacked() && expansion == EExpansion::all) {
        return std::make_unique<CAudioProcessStack>();
    }
    if (definition.isMultiband() && expansion != EExpansion::done) {
        return std::make_unique<CAudioProcessMB>();
    }
    return definition.createProcess();
}

} // namespace

CErrorPtr instantiateProcess(const CAudioProcessSetup& setup, std::unique_ptr<CAudioProcessBase>& out)
{
    out.reset();
    std::unique_ptr<CAudioProcessBase> node = makeNode(*setup.definition, setup.expansion);
    QRB_TRY(node->setUp(setup));
    out = std::move(node);
    return nullptr;
}

CErrorPtr instantiateTopProcess(const CAudioProcessSetup& setup, std::unique_ptr<CAudioProcessBase>& out)
{
    if (setup.context.collector != nullptr) {
        QRB_TRY(declareProcessTree(*setup.context.collector, *setup.definition, setup.name));
    }
    QRB_TRY(instantiateProcess(setup, out));
    return nullptr;
}

} // namespace qrb
