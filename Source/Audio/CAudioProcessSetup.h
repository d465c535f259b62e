// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CError.h"
#include "Core/CString.h"

#include <memory>

namespace qrb {

class CAudioEnv;
class CAudioParamCollector;
class CAudioProcessBase;
class CAudioProcessDefBase;
class CAudioVizCollector;
class CSampleBufferPool;
struct CAudioGraphChanges;

/// What all nodes of one plug-in instance share; everything outlives the nodes.
struct CAudioProcessContext {
    CAudioParamCollector* collector = nullptr; ///< null: nodes run without parameters
    CAudioEnv* env = nullptr;
    CSampleBufferPool* pool = nullptr;
    CAudioGraphChanges* changes = nullptr; ///< null: nobody plans
    CAudioVizCollector* viz = nullptr;     ///< null: what modules have to show goes nowhere
};

/// How far a definition has been expanded when a node is made of it.
enum class EExpansion {
    all,     ///< the definition may become a stack or a set of bands
    stacked, ///< one instance of a stack; may still become a set of bands
    done     ///< the plain node
};

/// Everything a node is made from.
struct CAudioProcessSetup {
    CAudioProcessContext context;
    const CAudioProcessDefBase* definition = nullptr;
    CString name;         ///< full dotted path, for messages and for the lookup of parameters
    int groupIndex = -1;  ///< channel group the node belongs to, or -1
    int elementIndex = 0; ///< element its parameters are read at, before the definition's shift
    EExpansion expansion = EExpansion::all;
};

/// Makes the node of a definition, expanded as the definition asks: a stack, a set of bands, or the node itself. Remaps and parameters
/// of the definition are entered on the way. On an error `out` is null.
[[nodiscard]] CErrorPtr instantiateProcess(const CAudioProcessSetup& setup, std::unique_ptr<CAudioProcessBase>& out);

/// The same for a node that stands at the top of an instance's graph: first makes known what all definitions below it
/// declare. Reads files, so not on the audio thread.
[[nodiscard]] CErrorPtr instantiateTopProcess(const CAudioProcessSetup& setup, std::unique_ptr<CAudioProcessBase>& out);

} // namespace qrb
