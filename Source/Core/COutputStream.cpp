// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/COutputStream.h"

#include "Core/CInputStream.h"
#include "Core/CUtf16Cursor.h"
#include "Core/CUtf8.h"
#include "Core/CWriteSeqBuffer.h"

namespace qrb {

CErrorPtr COutputStream::writeUInt8(std::uint8_t value)
{
    return write(&value, sizeof(value));
}

CErrorPtr COutputStream::writeInt32(std::int32_t value)
{
    return write(&value, sizeof(value));
}

CErrorPtr COutputStream::writeUInt32(std::uint32_t value)
{
    return write(&value, sizeof(value));
}

CErrorPtr COutputStream::writeDouble(double value)
{
    return write(&value, sizeof(value));
}

CErrorPtr COutputStream::writeString(const CString& text)
{
    CWriteSeqBuffer encoded;
    CUtf16Cursor cursor(text);
    char32_t character = 0;
    while (cursor.next(character)) {
        std::uint8_t sequence[kMaxUtf8Bytes];
        const std::size_t length = utf8Encode(character, sequence);
        if (encoded.getSize() + length > kMaxStreamStringBytes)
            break;
        QRB_TRY(encoded.write(sequence, length));
    }
    QRB_TRY(writeUInt32(static_cast<std::uint32_t>(encoded.getSize())));
    return encoded.writeTo(*this);
}

} // namespace qrb
