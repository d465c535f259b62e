// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CCheckedObject.h"
#include "Core/CError.h"

#include <cstdint>

namespace qrb {

/// Position and size of a stream, in bytes.
class CPosStream : public CCheckedObject {
public:
    virtual CErrorPtr getPosition(std::uint64_t& position) = 0;
    virtual CErrorPtr getSize(std::uint64_t& size) = 0;
    virtual CErrorPtr setPosition(std::uint64_t position) = 0;

    /// The same for those who keep 32-bit values; fail above 2 GB.
    CErrorPtr getPositionInt32(std::int32_t& position);
    CErrorPtr getSizeInt(std::int32_t& size);
};

} // namespace qrb
