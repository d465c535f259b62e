// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CString.h"

#include <pluginterfaces/vst/vsttypes.h>

namespace qrb {

/// Writes a text the way the host takes it, cut to its room.
void copyToHost(const CString& text, Steinberg::Vst::String128 out);
/// A text of the host, which ends with a NUL or after `limit` characters. Null is empty.
[[nodiscard]] CString textOfHost(const Steinberg::Vst::TChar* text, std::size_t limit = 1024);

} // namespace qrb
