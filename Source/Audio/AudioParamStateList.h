// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CArray.h"
#include "Core/CError.h"
#include "Core/CString.h"

namespace qrb {

/// Names of states from the list of presets in a local block of application data, appended to both lists alike: one for
/// each preset, "Long;Short" behind its registry's id. A block that is empty or missing is an error; one that cannot be
/// read gives no names.
CErrorPtr readStateNameList(const CString& dataName, CArray<CString>& longNames, CArray<CString>& shortNames);

} // namespace qrb
