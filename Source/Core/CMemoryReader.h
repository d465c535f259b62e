// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CArray.h"
#include "Core/CPosInputStream.h"

#include <span>

namespace qrb {

/// Reader over memory it owns.
class CMemoryReader : public CPosInputStream {
public:
    explicit CMemoryReader(CByteArray&& data);
    CMemoryReader(const CMemoryReader&) = delete;
    CMemoryReader& operator=(const CMemoryReader&) = delete;

    CErrorPtr skip(std::uint64_t count) override;
    CErrorPtr read(void* buffer, std::size_t count) override;
    CErrorPtr readAvailable(void* buffer, std::size_t& count) override;
    CErrorPtr getPosition(std::uint64_t& position) override;
    CErrorPtr getSize(std::uint64_t& size) override;
    CErrorPtr setPosition(std::uint64_t position) override;

protected:
    /// Over memory of somebody else.
    explicit CMemoryReader(std::span<const std::uint8_t> bytes);

    [[nodiscard]] std::span<const std::uint8_t> remaining() const { return m_bytes.subspan(m_position); }

private:
    CByteArray m_data;
    std::span<const std::uint8_t> m_bytes;
    std::size_t m_position = 0;
};

} // namespace qrb
