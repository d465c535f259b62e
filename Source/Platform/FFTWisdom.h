// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace qrb::platform {

/// Which plans of 32 to 65536 samples were measured to be the fastest, in the FFT library's own words; a third faster
/// than estimated ones where it counts. The library takes them where it is of the same version and finds a processor of
/// the same kind, and estimates elsewhere: either way the same machine always gets the same plans and so the same bits.
[[nodiscard]] const char* fftWisdom();

} // namespace qrb::platform
