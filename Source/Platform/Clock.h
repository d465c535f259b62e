// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace qrb::platform {

/// Seconds since some moment before the start of the process; never goes back. Thread: any.
[[nodiscard]] double clockSeconds();

} // namespace qrb::platform
