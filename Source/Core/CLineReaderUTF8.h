// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CArray.h"
#include "Core/CCheckedObject.h"
#include "Core/CError.h"

#include <cstdint>

namespace qrb {

class CInputStream;
class CString;

/// Cuts UTF-8 text from a stream into lines.
class CLineReaderUTF8 : public CCheckedObject {
public:
    /// `stream` must outlive the reader; it is read ahead.
    explicit CLineReaderUTF8(CInputStream& stream);

    /// Gives the next line without its end, or `hasLine` = false at the end of the data. Carriage returns are dropped
    /// wherever they stand, and so are bytes that belong to no character.
    CErrorPtr readLine(CString& line, bool& hasLine);

private:
    static constexpr std::size_t kBufferSize = 16384;

    CErrorPtr nextByte(std::uint8_t& byte, bool& hasByte);

    CInputStream& m_stream;
    CByteArray m_buffer;
    std::size_t m_position = 0;
    std::size_t m_count = 0;
};

} // namespace qrb
