// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CInputStream.h"
#include "Core/CInputZipStream.h"
#include "Core/COutputStream.h"
#include "Core/COutputZipStream.h"
#include "Core/LzfPacking.h"

#include <algorithm>
#include <cstring>
#include <zlib.h>

namespace qrb {

namespace {

/// Three packed bytes of LZF give 264 at most.
constexpr std::uint64_t kMaxLZFRatio = 88;

std::uint32_t headerCheck(const void* header, std::size_t size)
{
    return static_cast<std::uint32_t>(
        adler32(adler32(0, nullptr, 0), static_cast<const Bytef*>(header), static_cast<uInt>(size)));
}

CErrorPtr requireChunkSize(std::uint64_t size)
{
    if (size > kMaxChunkBytes)
        return QRB_ERROR("@qrbstr_CInputStream_requireChunkSize_TooLarge Chunk of %1 bytes is above the allowed %2.",
                         size, kMaxChunkBytes);
    return nullptr;
}

} // namespace

CErrorPtr CInputStream::readCompressedData(CByteArray& buffer, std::uint32_t id)
{
    buffer.clear();
    CByteArray data;
    QRB_TRY(readZipChunk(data, id));
    buffer = std::move(data);
    return nullptr;
}

CErrorPtr CInputStream::readZipChunk(CByteArray& buffer, std::uint32_t id)
{
    std::uint32_t foundId = 0;
    QRB_TRY(readUInt32(foundId));
    if (foundId != id)
        return QRB_ERROR("@qrbstr_CInputStream_readCompressedData_InvalidData "
                         "Invalid ID encountered when reading compressed data (expected %1, read %2).",
                         id, foundId);
    std::uint32_t size = 0;
    std::uint32_t check = 0;
    QRB_TRY(readUInt32(size));
    QRB_TRY(readUInt32(check));
    const std::uint32_t expectedCheck = headerCheck(&size, sizeof(size));
    if (check != expectedCheck)
        return QRB_ERROR("@qrbstr_CInputStream_readCompressedData_HeadCRC "
                         "Invalid CRC encountered when reading compressed data (expected %1, read %2).",
                         expectedCheck, check);
    QRB_TRY(requireChunkSize(size));
    CInputZipStream zip;
    QRB_TRY(zip.open(*this));
    QRB_TRY(zip.readBytes(buffer, size));
    QRB_TRY(zip.requireEnd());
    return zip.close();
}

CErrorPtr CInputStream::readCompressedDataLZF(CByteArray& buffer, std::uint32_t id)
{
    buffer.clear();
    CByteArray data;
    QRB_TRY(readLZFChunk(data, id));
    buffer = std::move(data);
    return nullptr;
}

CErrorPtr CInputStream::readLZFChunk(CByteArray& buffer, std::uint32_t id)
{
    std::uint32_t foundId = 0;
    QRB_TRY(readUInt32(foundId));
    if (foundId != id)
        return QRB_ERROR("@qrbstr_CInputStream_readCompressedDataLZF_InvalidData "
                         "Invalid ID encountered when reading compressed data (expected %1, read %2).",
                         id, foundId);
    std::uint32_t sizes[2] = {}; // plain, packed
    std::uint32_t check = 0;
    QRB_TRY(read(sizes, sizeof(sizes)));
    QRB_TRY(readUInt32(check));
    const std::uint32_t expectedCheck = headerCheck(sizes, sizeof(sizes));
    if (check != expectedCheck)
        return QRB_ERROR("@qrbstr_CInputStream_readCompressedDataLZF_HeadCRC "
                         "Invalid CRC encountered when reading compressed data (expected %1, read %2).",
                         expectedCheck, check);
    QRB_TRY(requireChunkSize(sizes[0]));
    QRB_TRY(requireChunkSize(sizes[1]));

    CByteArray copied;
    const std::uint8_t* packed = getDirectData();
    if (packed != nullptr) {
        QRB_TRY(skip(sizes[1]));
    } else {
        QRB_TRY(readBytes(copied, sizes[1]));
        packed = copied.data();
    }

    bool isSound = sizes[0] <= sizes[1] * kMaxLZFRatio;
    if (isSound) {
        buffer.resize(sizes[0]);
        isSound = unpackLZF({packed, sizes[1]}, buffer.span());
    }
    if (!isSound)
        return QRB_ERROR("@qrbstr_CInputStream_readCompressedDataLZF_InvalidStream "
                         "Invalid LZF data encountered (%1 bytes to give %2).",
                         sizes[1], sizes[0]);
    return nullptr;
}

CErrorPtr COutputStream::writeCompressedData(std::span<const std::uint8_t> data, std::uint32_t id)
{
    QRB_TRY(requireChunkSize(data.size()));
    const auto size = static_cast<std::uint32_t>(data.size());
    QRB_TRY(writeUInt32(id));
    QRB_TRY(writeUInt32(size));
    QRB_TRY(writeUInt32(headerCheck(&size, sizeof(size))));
    COutputZipStream zip;
    QRB_TRY(zip.open(*this));
    QRB_TRY(zip.write(data.data(), data.size()));
    return zip.close();
}

CErrorPtr COutputStream::writeCompressedDataLZF(std::span<const std::uint8_t> data, std::uint32_t id)
{
    QRB_TRY(requireChunkSize(data.size()));
    CByteArray packed;
    packLZF(data, packed);
    // What could not be read back must not be written: packed data may be longer than plain data.
    QRB_TRY(requireChunkSize(packed.size()));
    const std::uint32_t sizes[2] = {static_cast<std::uint32_t>(data.size()), static_cast<std::uint32_t>(packed.size())};
    QRB_TRY(writeUInt32(id));
    QRB_TRY(write(sizes, sizeof(sizes)));
    QRB_TRY(writeUInt32(headerCheck(sizes, sizeof(sizes))));
    return write(packed.data(), packed.size());
}

} // namespace qrb
