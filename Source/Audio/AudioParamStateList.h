// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CArray.h"
#include "Core/CError.h"
#include "Core/CString.h"

namespace qrb {

/// Names of states from the list of presets in a local block of application data, appended to both lists alike. A block
/// that is empty or missing is an error. The presets in a block give no names yet: their format comes with the presets.
CErrorPtr readStateNameList(const CString& dataName, CArray<CString>& longNames, CArray<CString>& shortNames);

} // namespace qrb
