// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CInputStream.h"
#include "Core/CPosStream.h"

namespace qrb {

/// Reader that can be moved.
class CPosInputStream : public CInputStream, public virtual CPosStream {};

} // namespace qrb
