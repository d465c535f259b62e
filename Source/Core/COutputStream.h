// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CCheckedObject.h"
#include "Core/CError.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace qrb {

class CString;

/// Sequential writer of bytes; the counterpart of CInputStream, byte for byte.
class COutputStream : public CCheckedObject {
public:
    virtual CErrorPtr write(const void* buffer, std::size_t count) = 0;

    CErrorPtr writeUInt8(std::uint8_t value);
    CErrorPtr writeInt32(std::int32_t value);
    CErrorPtr writeUInt32(std::uint32_t value);
    CErrorPtr writeDouble(double value);
    /// A string: count of bytes and UTF-8, cut behind the last whole character within kMaxStreamStringBytes, so that
    /// what is written can be read. Surrogate pairs become one sequence, lone surrogates are dropped.
    CErrorPtr writeString(const CString& text);

    /// A chunk packed by zlib at its default level.
    CErrorPtr writeCompressedData(std::span<const std::uint8_t> data, std::uint32_t id);
    /// A chunk packed by LZF, for data that must load fast.
    CErrorPtr writeCompressedDataLZF(std::span<const std::uint8_t> data, std::uint32_t id);
};

} // namespace qrb
