// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CString.h"

namespace qrb {

class CObject;

/// The object at a path that is seen from `start`, or null.
[[nodiscard]] CObject* findObject(CObject& start, const CString& path);
/// Full name of the last object on that path that exists; empty if not even the start of it does.
[[nodiscard]] CString resolvedPath(CObject& start, const CString& path);

} // namespace qrb
