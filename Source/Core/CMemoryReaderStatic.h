// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CMemoryReader.h"

namespace qrb {

/// Reader over memory that outlives it, such as a resource. The one stream that gives direct access to its bytes.
class CMemoryReaderStatic : public CMemoryReader {
public:
    explicit CMemoryReaderStatic(std::span<const std::uint8_t> bytes);

    const std::uint8_t* getDirectData() override;
    std::size_t getDirectSize() override;
};

} // namespace qrb
