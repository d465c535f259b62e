// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CMemoryReaderStatic.h"

namespace qrb {

CMemoryReaderStatic::CMemoryReaderStatic(std::span<const std::uint8_t> bytes) : CMemoryReader(bytes) {}

const std::uint8_t* CMemoryReaderStatic::getDirectData()
{
    static constexpr std::uint8_t kNothing = 0; // an empty block may come without an address, which would read as "no"
    const std::uint8_t* data = remaining().data();
    return data != nullptr ? data : &kNothing;
}

std::size_t CMemoryReaderStatic::getDirectSize()
{
    return remaining().size();
}

} // namespace qrb
