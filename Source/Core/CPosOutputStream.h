// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/COutputStream.h"
#include "Core/CPosStream.h"

namespace qrb {

/// Writer that can be moved.
class CPosOutputStream : public COutputStream, public virtual CPosStream {};

} // namespace qrb
