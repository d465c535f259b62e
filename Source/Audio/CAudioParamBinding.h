// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CError.h"
#include "Core/CString.h"

namespace qrb {

class CAudioParamCollector;
class CAudioProcessDefBase;

/// Makes what a definition and all definitions below it declare known to a plug-in instance: remaps, global parameters,
/// shared storages, filters between parameters. Once for each top node, before it is instantiated; reads files, so not on
/// the audio thread. An error if a filter has the wrong number of parameters.
[[nodiscard]] CErrorPtr declareProcessTree(CAudioParamCollector& collector, const CAudioProcessDefBase& definition,
                                           const CString& name);

/// Enters the remaps of one definition and binds its parameters; parameters known already stay what they are.
void declareProcessParams(CAudioParamCollector& collector, const CAudioProcessDefBase& definition, const CString& name);

} // namespace qrb
