// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CArray.h"
#include "Core/CCheckedObject.h"
#include "Core/CError.h"

#include <cstddef>
#include <cstdint>

namespace qrb {

class CString;

/// Most bytes a string on a stream may have.
inline constexpr std::size_t kMaxStreamStringBytes = 61440;

/// Most bytes a chunk may unpack to, and most packed bytes of a chunk that tells their count.
inline constexpr std::size_t kMaxChunkBytes = 64u * 1024u * 1024u;

/// Sequential reader of bytes. Multi-byte values are little endian, without alignment padding.
/// What is read is outside data: a count in it is believed only as far as bytes really follow, and a value that could
/// not be read is left empty or zero. A stream belongs to one thread at a time.
class CInputStream : public CCheckedObject {
public:
    /// The remaining bytes if they lie in memory that outlives the stream, null otherwise.
    [[nodiscard]] virtual const std::uint8_t* getDirectData() { return nullptr; }
    /// Count of the bytes at getDirectData(); 0 without such data.
    [[nodiscard]] virtual std::size_t getDirectSize() { return 0; }
    /// Moves forward by `count` bytes; fewer bytes than that are an error.
    virtual CErrorPtr skip(std::uint64_t count);
    /// Reads exactly `count` bytes; fewer bytes than that are an error, and the content of `buffer` is undefined then.
    virtual CErrorPtr read(void* buffer, std::size_t count) = 0;
    /// Reads up to `count` bytes and puts the count read there; reading fewer, or none at the end, is no error.
    virtual CErrorPtr readAvailable(void* buffer, std::size_t& count) = 0;

    CErrorPtr readUInt8(std::uint8_t& value);
    CErrorPtr readInt32(std::int32_t& value);
    CErrorPtr readUInt32(std::uint32_t& value);
    CErrorPtr readDouble(double& value);
    /// A string: count of bytes and UTF-8. A truncated sequence or a NUL ends the text.
    CErrorPtr readString(CString& text);
    /// Appends `count` bytes to `buffer`, which grows only as they come: a false count ends in an error, not in a
    /// large allocation.
    CErrorPtr readBytes(CByteArray& buffer, std::uint64_t count);

    /// A chunk packed by zlib. The stream is read ahead, so nothing else can be read from it afterwards.
    /// On failure `buffer` is empty.
    CErrorPtr readCompressedData(CByteArray& buffer, std::uint32_t id);
    /// A chunk packed by LZF; the stream stands directly behind it afterwards. On failure `buffer` is empty.
    CErrorPtr readCompressedDataLZF(CByteArray& buffer, std::uint32_t id);

private:
    CErrorPtr readZipChunk(CByteArray& buffer, std::uint32_t id);
    CErrorPtr readLZFChunk(CByteArray& buffer, std::uint32_t id);
};

} // namespace qrb
