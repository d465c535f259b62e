// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CError.h"

namespace qrb {

class CObject;
class CObjectAttr;

/// What a class does when an attribute of an object is set. The value is a copy that the setter may keep using.
using CAttrSetter = CErrorPtr (*)(CObject& object, const CObjectAttr& value);

} // namespace qrb
