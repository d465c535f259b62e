// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CError.h"

namespace qrb {

class CObject;
class CString;
struct CModuleConfig;

/// Builds and takes down what all instances share, and makes the roots of instances and editors. It holds nothing of
/// its own: the process state does.
class CApplication {
public:
    /// Fills creators and resources, then builds the shared tree.
    [[nodiscard]] static CErrorPtr init(const CModuleConfig& config);
    /// Builds the shared tree from a document; with an empty name the tree is just its root. Fails if there is one.
    [[nodiscard]] static CErrorPtr initSharedObject(const CString& name);
    /// Makes a root with a notify server; the tree belongs to the calling thread, and the caller releases it. With a
    /// name, that document is loaded into it; on an error `out` is null. Thread: any.
    [[nodiscard]] static CErrorPtr initRootObject(CObject*& out, const CString& name);
    /// Releases the shared tree.
    static void finalize();
};

} // namespace qrb
