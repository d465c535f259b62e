// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Clock.h"

#include <ctime>

namespace qrb::platform {

double clockSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1.0e-9;
}

} // namespace qrb::platform
