// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CInputStream.h"

#include "Core/CUtf8.h"

#include <algorithm>
#include <bit>
#include <string_view>

namespace qrb {

namespace {

static_assert(std::endian::native == std::endian::little, "values go to streams as they lie in memory");

constexpr std::size_t kSkipPiece = 32768;
constexpr std::size_t kFirstPiece = 4096;
constexpr std::size_t kMaxPiece = 256 * 1024;

bool isPlainAscii(std::span<const std::uint8_t> bytes)
{
    return std::all_of(bytes.begin(), bytes.end(), [](std::uint8_t byte) { return byte != 0 && byte < 0x80; });
}

CString decodeText(std::span<const std::uint8_t> bytes)
{
    if (isPlainAscii(bytes))
        return CString(std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
    CArray<char16_t, 256> units;
    for (std::size_t i = 0; i < bytes.size() && bytes[i] != 0;) {
        const std::size_t length = utf8SequenceLength(bytes[i]);
        if (length > bytes.size() - i)
            break;
        char32_t character = 0;
        if (length == 0 || !utf8Decode(bytes.data() + i, length, character)) {
            ++i; // the bytes behind it start nothing, or a character of their own
            continue;
        }
        if (character > 0xFFFF) {
            units.append(static_cast<char16_t>(0xD7C0 + (character >> 10)));
            character = 0xDC00 + (character & 0x3FF);
        }
        units.append(static_cast<char16_t>(character));
        i += length;
    }
    return CString::fromUtf16({units.data(), units.size()});
}

} // namespace

CErrorPtr CInputStream::skip(std::uint64_t count)
{
    std::uint8_t dropped[kSkipPiece];
    while (count > 0) {
        const auto piece = static_cast<std::size_t>(std::min<std::uint64_t>(count, kSkipPiece));
        QRB_TRY(read(dropped, piece));
        count -= piece;
    }
    return nullptr;
}

CErrorPtr CInputStream::readUInt8(std::uint8_t& value)
{
    value = 0;
    return read(&value, sizeof(value));
}

CErrorPtr CInputStream::readInt32(std::int32_t& value)
{
    value = 0;
    return read(&value, sizeof(value));
}

CErrorPtr CInputStream::readUInt32(std::uint32_t& value)
{
    value = 0;
    return read(&value, sizeof(value));
}

CErrorPtr CInputStream::readDouble(double& value)
{
    value = 0.0;
    return read(&value, sizeof(value));
}

CErrorPtr CInputStream::readString(CString& text)
{
    text.clear();
    std::uint32_t count = 0;
    QRB_TRY(readUInt32(count));
    if (count > kMaxStreamStringBytes)
        return QRB_ERROR("@qrbstr_CInputStream_readString_StringDataTooLong "
                         "String length %1 too long in readString().",
                         count);
    CArray<std::uint8_t, 128> bytes;
    for (std::size_t piece = kFirstPiece; bytes.size() < count; piece *= 2) {
        const std::size_t before = bytes.size();
        bytes.resize(std::min<std::size_t>(count, before + piece));
        QRB_TRY(read(bytes.data() + before, bytes.size() - before));
    }
    text = decodeText(bytes.span());
    return nullptr;
}

CErrorPtr CInputStream::readBytes(CByteArray& buffer, std::uint64_t count)
{
    for (std::size_t piece = kFirstPiece; count > 0; piece = std::min(piece * 2, kMaxPiece)) {
        const auto now = static_cast<std::size_t>(std::min<std::uint64_t>(count, piece));
        const std::size_t before = buffer.size();
        buffer.resize(before + now);
        QRB_TRY(read(buffer.data() + before, now));
        count -= now;
    }
    return nullptr;
}

} // namespace qrb
