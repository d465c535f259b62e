// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CString.h"

namespace qrb {

class CAudioEnv;
class CAudioParamCollector;
class CAudioProcessDefBase;
class CSampleBufferPool;

/// What all nodes of one plug-in instance share; everything outlives the nodes.
struct CAudioProcessContext {
    CAudioParamCollector* collector = nullptr; ///< null: nodes run without parameters
    CAudioEnv* env = nullptr;
    CSampleBufferPool* pool = nullptr;
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

} // namespace qrb
