// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CCheckedObject.h"

namespace qrb {

/// Something that the modules of one plug-in instance share, kept in its audio context under an integer key.
class CDCDAWContextWorkspace : public CCheckedObject {};

} // namespace qrb
