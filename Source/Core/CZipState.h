// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CZipStream.h"

#include <zlib.h>

namespace qrb {

struct CZipStream::CState : CCheckedObject {
    CState();

    z_stream zip{};
    bool isAtEnd = false;
    std::uint8_t packed[kBufferSize];
};

} // namespace qrb
